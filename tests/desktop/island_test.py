# SPDX-License-Identifier: MIT
"""The island and the glow on displays of every kind: where they are, what they leave alone, what they survive."""
import os
import signal
import time

from desktop import BACKGROUND, Desktop, Messages, near, wait_for
from kivo import Kivo, KivoTest, rule, run, settings
from wayland import Pointer, Relay, WaylandDesktop

BLACK = near((0, 0, 0), 60)
PLAIN = near(BACKGROUND, 4)
POWER = settings(rule('unplugged'), rule('pluggedIn'))
CRITICAL = settings(rule('macBelow', threshold=10, position='center', glows=True))
GLOWING_CHARGER = settings(rule('unplugged'), rule('pluggedIn', glows=True))


FULL_SCREEN = '<openbox_config xmlns="http://openbox.org/3.4/rc"><applications><application title="Event Tester">' \
              '<fullscreen>yes</fullscreen></application></applications></openbox_config>'


def body(picture):
    """The box of the island's black body, or None. What else is black stands further left."""
    box, count = picture.part(100, 0, picture.width - 100, picture.height).where(BLACK)
    return (box[0] + 100, *box[1:]) if count > 1000 else None


class IslandTest(KivoTest):
    def begin(self, desktop, stored, **environment):
        desktop.plug_in()
        desktop.hardware('set', 'BAT0', {'capacity': '79', 'energy_now': '39500000'})
        desktop.env.update(environment)
        kivo = Kivo(desktop, stored, tray=False)
        self.addCleanup(kivo.quit)
        for name in environment:
            del desktop.env[name]
        # Nothing shows for what was so when it began: the first change that it takes in is later.
        wait_for('Kivo', lambda: 'overlay info' in desktop.log('kivo'), 20)
        time.sleep(2.2)
        self.desktop, self.kivo = desktop, kivo
        return kivo

    def await_island(self, middle, top, size=(372, 66), seconds=6, **where):
        """An island of that size that stands there: it grows before and may shake."""
        def found():
            box = body(self.desktop.screenshot(**where))
            return box and all(abs(a - b) <= 2 for a, b in zip((box[0] + box[2] / 2, *box[1:]), (middle, top, *size)))
        wait_for(f'an island of {size} below {middle}, {top}', found, seconds)

    def await_nothing(self, before, seconds=8, **where):
        """The screen is what it was."""
        wait_for('a screen as before', lambda: self.desktop.screenshot(**where).data == before.data, seconds)

    def check_glowing_island(self, desktop, edge_depth):
        """A critical alert at the centre: its island, the light at all four edges, then nothing of either."""
        self.begin(desktop, CRITICAL)
        before = desktop.screenshot()
        desktop.unplug()
        desktop.hardware('set', 'BAT0', {'capacity': '4', 'energy_now': '2000000'})
        self.await_island(640, 367)
        # Between two pulses it is dim; at the end of them it stays bright.
        def lit():
            seen = desktop.screenshot()
            edges = [seen.at(200, 1), seen.at(200, 798), seen.at(1, 200), seen.at(1278, 600)]
            return seen if all(color[0] > 160 and color[2] < 140 for color in edges) else None
        seen = wait_for('light at every edge', lit, 6)
        box, _ = seen.where(lambda color: not PLAIN(color))
        self.assertEqual(box, (0, 0, 1280, 800))
        for place in ((200, edge_depth), (200, 799 - edge_depth), (edge_depth, 200), (1279 - edge_depth, 600)):
            self.assertTrue(PLAIN(seen.at(*place)), f'{seen.at(*place)} at {place}')
        self.await_nothing(before)

    def check_island_in_front_of_its_glow(self, desktop):
        """Where they meet at the top: for a glow that comes under an island, and an island that comes anew."""
        self.begin(desktop, GLOWING_CHARGER)
        def in_light():
            seen = desktop.screenshot()
            return seen if seen.at(200, 1)[1] > 160 and seen.at(200, 1)[2] < 140 and body(seen) else None
        for pause in (0.5, 6):
            desktop.unplug()
            self.await_island(640, 32)
            time.sleep(pause)
            desktop.plug_in()
            wait_for('light at the top', in_light)
            time.sleep(0.6)
            seen = desktop.screenshot()
            self.assertEqual([seen.at(x, 46) for x in (600, 640, 790)], [(0, 0, 0)] * 3, f'after {pause} s')
            time.sleep(6)


class X11Test(IslandTest):
    def desktop_with(self, **parts):
        return self.enterContext(Desktop(tray=None, notifications=False, sound=False, **parts))

    def test_island_and_glow_come_and_go(self):
        self.check_glowing_island(self.desktop_with(), 140)

    def test_an_island_in_front_of_its_glow(self):
        self.check_island_in_front_of_its_glow(self.desktop_with())

    def test_without_a_compositor_the_glow_is_a_line(self):
        self.check_glowing_island(self.desktop_with(compositor=False), 6)

    def test_a_compositor_goes_and_comes_back(self):
        desktop = self.desktop_with()
        self.begin(desktop, POWER)
        # The light around an island, or black where nothing is blended.
        around = lambda: desktop.screenshot().at(640, 26)
        desktop.unplug()
        self.await_island(640, 32)
        lit = around()
        self.assertFalse(PLAIN(lit), lit)
        desktop.end(desktop.picom)
        time.sleep(4)
        desktop.output(['hsetroot', '-solid', '#%02x%02x%02x' % BACKGROUND])
        desktop.plug_in()
        self.await_island(640, 32)
        self.assertTrue(PLAIN(around()), around())
        time.sleep(5)
        desktop.start_compositor()
        time.sleep(1)
        desktop.unplug()
        self.await_island(640, 32)
        self.assertEqual(around(), lit)

    def test_a_full_screen_window_keeps_focus_and_clicks_below_it(self):
        desktop = self.desktop_with()
        with open(desktop.path('rc.xml'), 'w', encoding='utf-8') as config:
            config.write(FULL_SCREEN)
        desktop.spawn('openbox', ['openbox', '--config-file', desktop.path('rc.xml')])
        desktop.spawn('xev', ['xev', '-event', 'button'])
        wait_for('a full screen', lambda: not PLAIN(desktop.screenshot().at(1000, 700)))
        self.begin(desktop, POWER)
        known = ['xprop', '-root', '_NET_CLIENT_LIST', '_NET_ACTIVE_WINDOW']
        before = desktop.screenshot(), desktop.output(known), desktop.output(['xdotool', 'getwindowfocus'])
        desktop.unplug()
        self.await_island(640, 32)
        self.assertEqual(before[1:], (desktop.output(known), desktop.output(['xdotool', 'getwindowfocus'])))
        desktop.output(['xdotool', 'mousemove', '640', '60', 'click', '1'])
        wait_for('the click in the window below', lambda: 'ButtonPress' in desktop.log('xev'))
        self.assertIsNotNone(body(desktop.screenshot()))
        self.await_nothing(before[0])

    def test_in_front_of_what_has_come_since(self):
        desktop = self.desktop_with()
        self.begin(desktop, POWER)
        before = desktop.screenshot()
        desktop.unplug()
        self.await_island(640, 32)
        self.await_nothing(before)
        # No window manager puts this one anywhere but in front of all.
        desktop.spawn('xev', ['xev', '-bw', '0', '-geometry', '1280x800+0+0'])
        wait_for('the window', lambda: not PLAIN(desktop.screenshot().at(1000, 700)))
        desktop.plug_in()
        self.await_island(640, 32)

    def test_scale_factors(self):
        desktop = self.desktop_with()
        for factor, size in (('1.5', (558, 99)), ('2', (744, 132))):
            with self.subTest(factor):
                kivo = self.begin(desktop, POWER, QT_SCALE_FACTOR=factor)
                desktop.unplug()
                self.await_island(640, 32 * float(factor), size)
                kivo.quit()

    def two_screens(self):
        desktop = self.desktop_with(screen='1600x600x24')
        self.monitors = lambda *words: desktop.output(['xrandr', *words])
        self.monitors('--setmonitor', 'left', '800/250x600/200+0+0', 'screen')
        self.monitors('--setmonitor', 'right', '800/250x600/200+800+0', 'none')
        return desktop

    def test_screens_of_two_scales_and_the_one_with_the_mouse(self):
        desktop = self.two_screens()
        self.begin(desktop, POWER, QT_SCREEN_SCALE_FACTORS='left=1;right=1.5')
        for x, change, island in ((1500, desktop.unplug, (1200, 48, (558, 99))), (30, desktop.plug_in, (400, 32))):
            desktop.output(['xdotool', 'mousemove', str(x), '500'])
            change()
            self.await_island(*island, seconds=12)

    def test_screens_come_and_go(self):
        desktop = self.two_screens()
        desktop.output(['xdotool', 'mousemove', '1500', '500'])
        self.begin(desktop, POWER)
        desktop.unplug()
        self.await_island(1200, 32)
        # The screen under the island goes, and the island goes on; then what is left is one again.
        self.monitors('--delmonitor', 'right')
        self.await_island(400, 32, seconds=2)
        time.sleep(4)
        self.monitors('--delmonitor', 'left')
        desktop.plug_in()
        self.await_island(800, 32)


class WaylandTest(IslandTest):
    def desktop_with(self, **parts):
        return self.enterContext(WaylandDesktop(**parts))

    def test_island_and_glow_come_and_go(self):
        self.check_glowing_island(self.desktop_with(), 140)
        self.assertIn('overlay layer', self.desktop.log('kivo'))

    def test_an_island_in_front_of_its_glow(self):
        self.check_island_in_front_of_its_glow(self.desktop_with())

    def test_fractions_of_a_pixel(self):
        desktop = self.desktop_with(scale='1.5')
        self.begin(desktop, POWER)
        desktop.unplug()
        self.await_island(640, 48, (558, 99))

    def two_screens(self, **parts):
        desktop = self.desktop_with(screens=('resolution 1280x800 position 0 0',
                                             'resolution 1024x800 position 1280 0 scale 2'), **parts)
        pointer = Pointer(desktop)
        self.addCleanup(pointer.close)
        self.to_first = lambda: pointer.move(300, 300, 1792, 800)
        self.to_second = lambda: pointer.move(1300, 300, 1792, 800)
        return desktop

    def await_on_first(self, seconds):
        self.await_island(640, 32, seconds=seconds, output='WL-1')

    def await_on_second(self, seconds=6):
        """In its own pixels."""
        self.await_island(512, 64, (744, 132), seconds, output='WL-2')

    def open_files(self):
        return len(os.listdir(f'/proc/{self.kivo.process.pid}/fd'))

    def on_both_ways(self, test, start):
        """By Qt on Wayland and by Qt on XWayland."""
        for xwayland in (False, True):
            with self.subTest('by way of XWayland' if xwayland else 'Wayland alone'):
                desktop = start(xwayland=xwayland)
                kivo = self.begin(desktop, POWER)
                test(desktop)
                self.assertNotIn('has ended', desktop.log('kivo'))
                kivo.quit()

    def test_the_screen_with_the_mouse(self):
        def check(desktop):
            self.to_second()
            before = self.open_files()
            desktop.unplug()
            self.await_on_second()
            self.assertIsNone(body(desktop.screenshot('WL-1')))
            # The one that takes its place goes where the mouse has gone.
            self.to_first()
            desktop.plug_in()
            self.await_on_first(2)
            self.assertIsNone(body(desktop.screenshot('WL-2')))
            time.sleep(4)
            self.assertLessEqual(self.open_files(), before)
        self.on_both_ways(check, self.two_screens)

    def test_screens_go_and_come_back(self):
        def check(desktop):
            self.to_second()
            before = self.open_files()
            desktop.unplug()
            self.await_on_second()
            desktop.pull_out('WL-2')
            self.await_on_first(1.5)
            # With the last of them goes the island, and the next one has nowhere to be.
            desktop.pull_out('WL-1')
            time.sleep(4)
            desktop.plug_in()
            time.sleep(4)
            desktop.sway_command('create_output')
            time.sleep(1)
            desktop.unplug()
            self.await_island(640, 32, output='WL-3')
            self.to_first()
            # All go, and one comes, within the time of an island.
            desktop.pull_out('WL-3')
            desktop.sway_command('create_output')
            self.await_island(640, 32, seconds=2, output='WL-4')
            time.sleep(4)
            self.assertLessEqual(self.open_files(), before)
        self.on_both_ways(check, self.two_screens)

    def test_what_waits_in_line_shows_on_a_screen_that_is_left(self):
        desktop = self.two_screens()
        self.to_second()
        self.begin(desktop, settings(rule('unplugged'), rule('deviceConnected')))
        desktop.hardware('mouse', '42')
        # Devices are read every half minute.
        wait_for('the island of the mouse', lambda: body(desktop.screenshot('WL-2')), 45)
        began = desktop.unplug()
        desktop.pull_out('WL-2')
        self.await_on_first(2)
        time.sleep(max(began + 4 - time.monotonic(), 0))
        self.await_on_first(1)

    def test_a_screen_changes_under_an_island(self):
        def check(desktop):
            rows = (('resolution', '1024x704'), (512, 32)), (('scale', '2'), (512, 64, (744, 132))), \
                (('scale', '1.1'), (512, 35, (409, 73)))
            for (change, island), power in zip(rows, (desktop.unplug, desktop.plug_in, desktop.unplug)):
                power()
                wait_for('an island', lambda: body(desktop.screenshot()), 6)
                desktop.sway_command('output', 'HEADLESS-1', *change)
                self.await_island(*island, seconds=2)
                time.sleep(4)
        self.on_both_ways(check, self.desktop_with)

    def test_a_compositor_that_does_not_answer(self):
        desktop = self.desktop_with(x11=True)
        self.begin(desktop, POWER)
        desktop.sway.send_signal(signal.SIGSTOP)
        for change in (desktop.unplug, desktop.plug_in) * 2:
            change()
            time.sleep(1)
        self.assertLess(self.seconds_of_work(), 2)
        desktop.sway.send_signal(signal.SIGCONT)
        self.await_island(640, 32, seconds=2)

    def test_a_full_screen_window_gets_the_clicks(self):
        desktop = self.desktop_with(xwayland=True)
        desktop.spawn('xev', ['xev', '-event', 'button'])
        wait_for('a window', lambda: 'Event Tester' in desktop.sway_command('-t', 'get_tree'))
        desktop.sway_command('fullscreen', 'enable')
        self.begin(desktop, POWER)
        self.assertIn('overlay layer', desktop.log('kivo'))
        desktop.unplug()
        self.await_island(640, 32)
        pointer = Pointer(desktop)
        self.addCleanup(pointer.close)

        def click():
            pointer.click(640, 60, 1280, 800)
            return 'ButtonPress' in desktop.log('xev')
        wait_for('a click in the window below', click, 3, 0.1)
        self.assertIsNotNone(body(desktop.screenshot()))

    def test_it_ends_with_the_compositor_that_its_windows_are_on(self):
        for xwayland in (False, True):
            with self.subTest('by way of XWayland' if xwayland else 'Wayland alone'):
                desktop = self.desktop_with(xwayland=xwayland)
                kivo = self.begin(desktop, POWER)
                desktop.unplug()
                self.await_island(640, 32)
                desktop.end(desktop.sway)
                wait_for("Kivo's end", lambda: kivo.process.poll() is not None, 20)
                self.assertEqual(kivo.process.poll(), 1)

    def test_a_connection_that_ends(self):
        for objection in (None, 'no such thing'):
            with self.subTest(objection):
                desktop = self.desktop_with(x11=True)
                relay = Relay(desktop)
                self.addCleanup(relay.close)
                kivo = self.begin(desktop, POWER)
                desktop.unplug()
                self.await_island(640, 32)
                relay.part(objection)
                # The island goes on where it can, and the next one is the compositor's again.
                self.await_island(640, 32, seconds=2, output=None)
                time.sleep(6)
                desktop.plug_in()
                self.await_island(640, 32)
                self.assertIsNone(body(desktop.screenshot(None)))
                self.assertEqual(self.told(), ['s overlay layer', 'has ended', 'X11 windows', 's overlay layer'])
                self.assertEqual('wl_registry, error 7' in desktop.log('kivo'), objection is not None)
                self.assertLess(self.seconds_of_work(), 3)
                kivo.quit()

    def test_notifications_go_on_where_nothing_else_can(self):
        desktop = self.desktop_with()
        desktop.spawn('notifications', ['/usr/bin/python3', '-m', 'dbusmock', '--session', '-t', 'notification_daemon'])
        desktop.wait_name('DBUS_SESSION_BUS_ADDRESS', 'org.freedesktop.Notifications')
        messages = Messages(desktop, 'DBUS_SESSION_BUS_ADDRESS', "interface='org.freedesktop.Notifications'")
        relay = Relay(desktop)
        self.addCleanup(relay.close)
        self.begin(desktop, POWER)
        desktop.unplug()
        self.await_island(640, 32)
        relay.part()
        wait_for('a notification', lambda: [title for _, _, title, _ in messages.notifications()] == ['Unplugged'])
        time.sleep(6)
        desktop.plug_in()
        self.await_island(640, 32)
        self.assertEqual(len(messages.notifications()), 1)
        self.assertEqual(self.told(), ['s overlay layer', 'has ended', 'as notifications', 's overlay layer'])

    def test_the_compositor_goes_and_comes_back(self):
        desktop = self.desktop_with(x11=True)
        self.begin(desktop, POWER)
        desktop.end(desktop.sway, signal.SIGKILL)
        for change in (desktop.unplug, desktop.plug_in):
            change()
            self.await_island(640, 32, output=None)
            time.sleep(4)
        desktop.start_sway()
        time.sleep(2)
        desktop.unplug()
        self.await_island(640, 32)
        self.assertEqual(self.told(), ['s overlay layer', 'has ended', 'X11 windows', 's overlay layer'])

    def told(self):
        """What the log says of the ways that islands take."""
        words = ('s overlay layer', 'X11 windows', 'as notifications', 'has ended')
        return [word for line in self.desktop.log('kivo').splitlines() for word in words if word in line]

    def seconds_of_work(self):
        with open(f'/proc/{self.kivo.process.pid}/stat', encoding='ascii') as file:
            fields = file.read().rpartition(')')[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf('SC_CLK_TCK')


if __name__ == '__main__':
    run()
