# SPDX-License-Identifier: MIT
"""The island and the glow on displays of every kind: where they are, what they leave alone, what they survive."""
import time

from desktop import BACKGROUND, Desktop, near, wait_for
from kivo import Kivo, KivoTest, rule, run, settings
from wayland import Pointer, WaylandDesktop

BLACK = near((0, 0, 0), 60)
PLAIN = near(BACKGROUND, 4)
POWER = settings(rule('unplugged'), rule('pluggedIn'))
CRITICAL = settings(rule('macBelow', threshold=10, position='center', glows=True))


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

class X11Test(IslandTest):
    def desktop_with(self, **parts):
        return self.enterContext(Desktop(tray=None, notifications=False, sound=False, **parts))

    def test_island_and_glow_come_and_go(self):
        self.check_glowing_island(self.desktop_with(), 140)

    def test_without_a_compositor_the_glow_is_a_line(self):
        self.check_glowing_island(self.desktop_with(compositor=False), 6)

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

    def test_scale_factors(self):
        desktop = self.desktop_with()
        for factor, size in (('1.5', (558, 99)), ('2', (744, 132))):
            with self.subTest(factor):
                kivo = self.begin(desktop, POWER, QT_SCALE_FACTOR=factor)
                desktop.unplug()
                self.await_island(640, 32 * float(factor), size)
                kivo.quit()

    def test_screens_come_and_go(self):
        desktop = self.desktop_with()
        monitors = lambda *words: desktop.output(['xrandr', *words])
        monitors('--setmonitor', 'left', '640/200x800/200+0+0', 'screen')
        monitors('--setmonitor', 'right', '640/200x800/200+640+0', 'none')
        desktop.output(['xdotool', 'mousemove', '1000', '500'])
        self.begin(desktop, POWER)
        desktop.unplug()
        self.await_island(960, 32)
        # The screen under the island goes; what is left is one again.
        monitors('--delmonitor', 'right')
        monitors('--delmonitor', 'left')
        desktop.plug_in()
        self.await_island(640, 32, seconds=12)


class WaylandTest(IslandTest):
    def desktop_with(self, **parts):
        return self.enterContext(WaylandDesktop(**parts))

    def test_island_and_glow_come_and_go(self):
        self.check_glowing_island(self.desktop_with(), 140)
        self.assertIn('overlay layer', self.desktop.log('kivo'))

    def test_fractions_of_a_pixel(self):
        desktop = self.desktop_with(scale='1.5')
        self.begin(desktop, POWER)
        desktop.unplug()
        self.await_island(640, 48, (558, 99))

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

    def test_screens_change_and_the_compositor_ends(self):
        desktop = self.desktop_with()
        self.begin(desktop, POWER)
        desktop.unplug()
        self.await_island(640, 32)
        # While it shows, its screen changes and another one comes.
        desktop.sway_command('output', 'HEADLESS-1', 'resolution', '1000x700')
        desktop.sway_command('create_output')
        desktop.plug_in()
        self.await_island(500, 32, seconds=12)
        # A program without its display ends; what it must not do is hang.
        desktop.end(desktop.sway)
        wait_for("Kivo's end", lambda: self.kivo.process.poll() is not None, 20)


if __name__ == '__main__':
    run()
