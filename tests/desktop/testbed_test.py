# SPDX-License-Identifier: MIT
"""The desktop that the other tests stand on works on this machine: it tells a broken testbed from a broken Kivo."""
import time
import unittest

from desktop import BACKGROUND, Desktop, Listener, Messages, wait_for


class TestbedTest(unittest.TestCase):
    def test_parts_answer(self):
        with Desktop() as desktop:
            def battery(text):
                return lambda: text in ' '.join(desktop.output(['upower', '-d']).split())
            wait_for('the battery in UPower', battery('percentage: 79%'))
            desktop.unplug()
            wait_for('UPower on battery', battery('on-battery: yes'))
            desktop.hardware('mouse', 42)
            wait_for('the mouse in UPower', battery('model: MX Master'))

            desktop.output(['/usr/bin/powerprofilesctl', 'set', 'power-saver'])
            self.assertEqual(desktop.output(['/usr/bin/powerprofilesctl', 'get']).strip(), 'power-saver')

            messages = Messages(desktop, 'DBUS_SESSION_BUS_ADDRESS', "interface='org.freedesktop.Notifications'")
            desktop.call('DBUS_SESSION_BUS_ADDRESS', 'org.freedesktop.Notifications', '/org/freedesktop/Notifications',
                         'org.freedesktop.Notifications.Notify', 'Test', '7', '', 'Title', 'Body', '[]', '{}', '0')
            wait_for('the call in the monitor', messages.notifications)
            self.assertEqual(messages.notifications()[0][1:], (7, 'Title', 'Body'))
            wait_for('the notification on show', lambda: desktop.output(['dunstctl', 'count', 'displayed']) == '1\n')

            self.assertIn('true', desktop.call(
                'DBUS_SESSION_BUS_ADDRESS', 'org.kde.StatusNotifierWatcher', '/StatusNotifierWatcher',
                'org.freedesktop.DBus.Properties.Get', 'org.kde.StatusNotifierWatcher',
                'IsStatusNotifierHostRegistered'))
            self.assertEqual(desktop.screenshot().at(640, 600), BACKGROUND)

            listener = Listener(desktop)
            wave = desktop.path('ding.wav')
            desktop.output(['sox', '-n', wave, 'synth', '.5', 'sine', '880', 'vol', '.5'])
            self.assertIsNone(listener.heard())
            started = time.monotonic()
            desktop.output(['paplay', wave])
            wait_for('the sound', listener.heard)
            self.assertLess(listener.heard() - started, 1)


if __name__ == '__main__':
    unittest.main()
