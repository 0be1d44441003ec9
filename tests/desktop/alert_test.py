# SPDX-License-Identifier: MIT
"""From a charger that is pulled out to what the user sees, hears and reads, with real parts all the way."""
import os
import time

from desktop import Desktop, Listener, Messages, wait_for
from kivo import CHARGING, CRITICAL, NORMAL, Kivo, KivoTest, rule, run, settings

NOTIFICATIONS = "interface='org.freedesktop.Notifications'"
POWER = settings(rule('unplugged', notifies=True, sound='bottle'), rule('pluggedIn', notifies=True, sound='pop'))


class AlertTest(KivoTest):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop())

    def start(self, stored=POWER):
        # A test that failed may have left the desktop without them.
        if self.desktop.upowerd.poll() is not None:
            self.desktop.start_upower()
        if self.desktop.dunst.poll() is not None:
            self.desktop.start_notifications()
        self.desktop.plug_in()
        self.desktop.hardware('set', 'BAT0', {'capacity': '79', 'energy_now': '39500000'})
        self.desktop.output(['xdotool', 'mousemove', '640', '500'])
        self.desktop.output(['dunstctl', 'close-all'])
        self.kivo = Kivo(self.desktop, stored)
        self.addCleanup(self.kivo.quit)
        self.kivo.await_level(79)
        return self.kivo

    def test_unplugging_is_seen_heard_and_read_within_a_second(self):
        kivo = self.start()
        messages = Messages(self.desktop, 'DBUS_SESSION_BUS_ADDRESS', NOTIFICATIONS)
        listener = Listener(self.desktop)
        self.assertNoIslandFor(kivo, 0.3)

        unplugged = self.desktop.unplug()
        _, delay = kivo.await_island(1, unplugged)
        wait_for('the notification', messages.notifications, unplugged + 1 - time.monotonic())
        wait_for('the sound', lambda: listener.heard(unplugged), unplugged + 1 - time.monotonic())
        picture, (x, y) = kivo.await_full_island()
        shown = time.monotonic()
        moment, replaced, title, body = messages.notifications()[0]
        print(f'island after {delay:.3f} s (a screenshot takes 0.1), notification after {moment - unplugged:.3f} s, '
              f'sound after {listener.heard(unplugged) - unplugged:.3f} s, peak {listener.peak():.2f}; '
              f'island at {x}, {y}')

        self.assertEqual((title, replaced), ('Unplugged', 0))
        self.assertRegex(body, r'^79%( · .* left)?$')
        self.assertAlmostEqual(x + picture.width / 2, 640, delta=1)
        self.assertTrue(8 <= y <= 60, f'the island hangs at {y}')
        self.assertShows(picture, NORMAL)             # ring and level
        self.assertShows(picture, (255, 255, 255))    # title
        self.assertLess(listener.peak(), 0.99, 'the sound is cut off')

        # It stays for three seconds and takes about half a second to leave.
        kivo.await_no_island()
        self.assertTrue(2.2 <= time.monotonic() - shown <= 4.5, time.monotonic() - shown)
        self.assertEqual(len(messages.notifications()), 1)

    def test_plugging_in_meanwhile_changes_the_island_in_place(self):
        kivo = self.start()
        messages = Messages(self.desktop, 'DBUS_SESSION_BUS_ADDRESS', NOTIFICATIONS)
        self.desktop.unplug()
        before, place = kivo.await_full_island()
        wait_for('the notification', messages.notifications)

        plugged = self.desktop.plug_in()
        wait_for('the second notification', lambda: len(messages.notifications()) == 2, 1)
        # It never leaves in between, and its time starts again.
        while time.monotonic() < plugged + 2.8:
            self.assertIsNotNone(kivo.island(), f'gone {time.monotonic() - plugged:.2f} s after plugging in')
        after, _ = kivo.await_full_island()
        # A screenshot may catch the last of its swing.
        for was, now in zip(place, kivo.await_full_island()[1]):
            self.assertAlmostEqual(was, now, delta=2)
        self.assertNotEqual(before.data, after.data)
        self.assertShows(after, CHARGING)
        kivo.await_no_island()

        _, replaced, title, _ = messages.notifications()[1]
        self.assertEqual(title, 'Charging')
        self.assertNotEqual(replaced, 0, 'the second notification stands beside the first')
        self.assertEqual(self.desktop.output(['dunstctl', 'count', 'displayed']).strip(), '1')

    def test_clicks_pass_through_the_island(self):
        # Its border and the box that it draws lie outside of where islands are looked for.
        window = self.desktop.spawn('xev', ['xev', '-geometry', '620x300+300+-20', '-event', 'button'])
        self.addCleanup(self.desktop.end, window)
        kivo = self.start()
        self.desktop.unplug()
        kivo.await_full_island()
        self.desktop.output(['xdotool', 'mousemove', '640', '60', 'click', '1'])
        wait_for('the click in the window below', lambda: 'ButtonPress' in self.desktop.log('xev'))
        self.assertIsNotNone(kivo.island())

    def test_a_low_battery_is_told_once(self):
        kivo = self.start(settings(rule('macBelow', threshold=10, notifies=True)))
        self.desktop.unplug()
        self.assertNoIslandFor(kivo, 0.5)
        messages = Messages(self.desktop, 'DBUS_SESSION_BUS_ADDRESS', NOTIFICATIONS)
        self.desktop.hardware('set', 'BAT0', {'capacity': '9', 'energy_now': '4500000'})
        picture, _ = kivo.await_full_island()
        self.assertShows(picture, CRITICAL)
        self.desktop.hardware('set', 'BAT0', {'capacity': '8', 'energy_now': '4000000'})
        kivo.await_level(8)
        kivo.await_no_island()
        self.assertEqual([title for _, _, title, _ in messages.notifications()], ['9% left'])

    def test_a_battery_that_vanishes_is_not_empty(self):
        kivo = self.start(settings(rule('macBelow', threshold=20), rule('macBelow', threshold=5)))
        self.desktop.unplug()
        # upowerd now says 0 %, and its sum of all batteries says empty.
        self.desktop.hardware('set', 'BAT0', {'present': '0'})
        self.assertNoIslandFor(kivo, 1.5)
        self.desktop.hardware('set', 'BAT0', {'present': '1'})
        kivo.await_level(79)
        self.assertNoIslandFor(kivo, 1)

    def test_services_that_restart_are_found_again(self):
        kivo = self.start()
        self.desktop.end(self.desktop.upowerd, how=9)
        self.desktop.end(self.desktop.dunst, how=9)
        time.sleep(0.5)
        self.desktop.start_upower()
        kivo.await_level(79)
        self.assertNoIslandFor(kivo, 1)  # nothing happened to the battery

        # No notification service: the island comes all the same.
        self.desktop.unplug()
        kivo.await_full_island()
        self.desktop.start_notifications()
        messages = Messages(self.desktop, 'DBUS_SESSION_BUS_ADDRESS', NOTIFICATIONS)
        kivo.await_no_island()
        plugged = self.desktop.plug_in()
        kivo.await_island(1, plugged)
        wait_for('a notification by the new service', messages.notifications, plugged + 1 - time.monotonic())

    def test_sound_without_islands(self):
        kivo = self.start({**POWER, 'showsOverlay': False})
        listener = Listener(self.desktop)
        unplugged = self.desktop.unplug()
        wait_for('the sound', lambda: listener.heard(unplugged), 1)
        self.assertNoIslandFor(kivo, 1)

    def test_silence_when_sounds_are_off(self):
        kivo = self.start({**POWER, 'playsSound': False})
        listener = Listener(self.desktop)
        unplugged = self.desktop.unplug()
        kivo.await_island(1, unplugged)
        time.sleep(1)
        self.assertIsNone(listener.heard(unplugged))


    def test_a_sound_that_nobody_takes_is_not_kept_for_later(self):
        kivo = self.start()
        threads = lambda: len(os.listdir(f'/proc/{kivo.process.pid}/task'))
        before = threads()
        self.desktop.output(['pactl', 'suspend-sink', 'kivo_null', '1'])
        self.addCleanup(self.desktop.output, ['pactl', 'suspend-sink', 'kivo_null', '0'])
        unplugged = self.desktop.unplug()
        kivo.await_island(1, unplugged)
        wait_for('the sound on its way', lambda: threads() > before, 1)
        wait_for('an end of the waiting', lambda: threads() <= before, 6)
        self.desktop.output(['pactl', 'suspend-sink', 'kivo_null', '0'])
        listener = Listener(self.desktop)
        time.sleep(1)
        self.assertIsNone(listener.heard())


class BarePartsTest(KivoTest):
    """Desktops that lack a part."""

    def test_without_a_compositor_the_island_has_no_black_corners(self):
        with Desktop(compositor=False, sound=False) as desktop:
            kivo = Kivo(desktop, POWER)
            kivo.await_level(79)
            desktop.unplug()
            picture, _ = kivo.await_full_island()
            corners = [picture.at(x, y) for x in (1, picture.width - 2) for y in (1, picture.height - 2)]
            for corner in corners:
                self.assertGreater(max(corner), 40, f'a corner is {corner}')
            self.assertShows(picture, (255, 255, 255))
            kivo.await_no_island()

    def test_without_upower_the_kernel_tells(self):
        with Desktop(upower=False, sound=False) as desktop:
            kivo = Kivo(desktop, POWER, on_hardware=True)
            kivo.await_level(79)
            unplugged = desktop.unplug()
            _, delay = kivo.await_island(1, unplugged)
            print(f'island after {delay:.3f} s')


if __name__ == '__main__':
    run()
