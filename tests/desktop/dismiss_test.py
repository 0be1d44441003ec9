# SPDX-License-Identifier: MIT
"""The desktop's own low-battery pop-ups: closed by Kivo over the real accessibility bus, and nothing else is."""
import os
import re
import shutil
import signal
import sys
import time

from desktop import Desktop, Messages, wait_for
import kivo as kivo_module
from kivo import Kivo, KivoTest, rule, run, settings

HERE = os.path.dirname(os.path.abspath(__file__))
NOTIFICATIONS = "interface='org.freedesktop.Notifications'"
BATTERY = ("interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',"
           "path='/org/freedesktop/UPower/devices/battery_BAT0'")
ON = {**settings(), 'dismissesSystemAlerts': True, 'showsOverlay': False}
DAEMONS = ['/usr/lib/mate-notification-daemon/mate-notification-daemon',
           '/usr/lib/notification-daemon/notification-daemon', '/usr/bin/lxqt-notificationd']
CLOSED = 'Dismissed a macOS battery alert'

QT_POPUPS = None  # the program; taken from the command line


class AccessibleDesktop(Desktop):
    """With the accessibility bus, enabled or not."""

    def start_accessibility(self, is_enabled):
        self.launcher = self.spawn('a11y', ['/usr/libexec/at-spi-bus-launcher', '--launch-immediately'],
                                   env={'GSETTINGS_BACKEND': 'memory'})
        self.wait_name('DBUS_SESSION_BUS_ADDRESS', 'org.a11y.Bus')
        answer = self.call('DBUS_SESSION_BUS_ADDRESS', 'org.a11y.Bus', '/org/a11y/bus', 'org.a11y.Bus.GetAddress')
        self.env['A11Y_ADDRESS'] = re.search(r"'(.*)'", answer)[1]
        if is_enabled:
            self.enable('true')

    def enable(self, value):
        self.call('DBUS_SESSION_BUS_ADDRESS', 'org.a11y.Bus', '/org/a11y/bus', 'org.freedesktop.DBus.Properties.Set',
                  'org.a11y.Status', 'IsEnabled', f'<{value}>')

    def is_enabled(self):
        return 'true' in self.call('DBUS_SESSION_BUS_ADDRESS', 'org.a11y.Bus', '/org/a11y/bus',
                                   'org.freedesktop.DBus.Properties.Get', 'org.a11y.Status', 'IsEnabled')

    def become_plasma(self):
        """As far as its low-battery notice goes."""
        self.env['XDG_CURRENT_DESKTOP'] = 'KDE'
        event = self.path('home', 'data', 'knotifications5', 'powerdevil.notifyrc')
        os.makedirs(os.path.dirname(event))
        with open(event, 'w', encoding='utf-8') as file:
            file.write('[Event/lowbattery]\nAction=Popup|Sound\n')

    def await_plasmas_notice(self, is_silent):
        def chosen():
            try:
                with open(self.path('home', 'config', 'powerdevil.notifyrc'), encoding='utf-8') as file:
                    return file.read()
            except FileNotFoundError:
                return None
        wanted = '[Event/lowbattery]\nAction=Sound\n' if is_silent else None
        wait_for(f'the notice {"silent" if is_silent else "as it was"}', lambda: chosen() == wanted, 20)

    def program_called(self, name, source):
        """A copy of a program under the name of one that shows notifications: Kivo knows those by their file."""
        path = self.path('run', name)
        if not os.path.exists(path):
            shutil.copy(source, path)
        return path

    def show(self, name, source, *arguments):
        """Starts such a program and waits until its windows are there."""
        self.shown = getattr(self, 'shown', 0) + 1
        log = f'{name}{self.shown}'
        command = ['env', '-u', 'NO_AT_BRIDGE', self.program_called(name, source), *arguments]
        process = self.spawn(log, command, env={'LANG': 'C.UTF-8'})
        process.said = lambda: self.log(log).splitlines()
        process.closed = lambda: sorted(line.split()[1] for line in process.said() if line.startswith('closed'))
        wait_for(f'the windows of {name}', lambda: 'shown' in process.said(), 10)
        return process


class DismissTest(KivoTest):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(AccessibleDesktop(sound=False))
        cls.desktop.start_accessibility(is_enabled=True)

    def start(self, stored=None, level=15):
        self.desktop.plug_in()
        self.set_level(level)
        kivo = Kivo(self.desktop, stored or ON)
        self.addCleanup(kivo.quit)
        kivo.await_level(level)
        self.before = self.count()
        return kivo

    def show(self, *arguments):
        process = self.desktop.show(*arguments)
        self.addCleanup(self.desktop.end, process)
        return process

    def show_gtk(self, *popups):
        return self.show('xfce4-notifyd', '/usr/bin/python3', f'{HERE}/popups/gtk_popups.py', *popups)

    def show_fake(self, kind):
        return self.show('mako', '/usr/bin/python3', f'{HERE}/popups/fake_popups.py',
                         self.desktop.env['A11Y_ADDRESS'], kind)

    def set_level(self, level):
        self.desktop.hardware('set', 'BAT0', {'capacity': str(level), 'energy_now': str(level * 500000)})

    def count(self):
        return self.desktop.log('kivo').count(CLOSED)

    def await_closed(self, process, *popups):
        wait_for(f'{popups} closed', lambda: process.closed() == sorted(popups), 20)
        wait_for('the count', lambda: self.count() - self.before == len(popups))

    def test_gtk_dialogs_about_the_battery_are_closed_and_no_others(self):
        self.start()
        # A program that shows no notifications is never read, whatever it says.
        other = self.show('some-mail-program', '/usr/bin/python3', f'{HERE}/popups/gtk_popups.py', 'english')
        popups = self.show_gtk('ordinary', 'english', 'icon', 'spanish')
        time.sleep(0.5)
        self.assertEqual(popups.closed(), [], 'on the charger nothing is closed')
        self.desktop.unplug()
        self.await_closed(popups, 'english', 'spanish', 'icon')
        time.sleep(3.5)  # another look
        self.assertEqual(popups.closed(), ['english', 'icon', 'spanish'])
        self.assertNotIn('answered', ' '.join(popups.said()))
        self.assertEqual(self.count() - self.before, 3)
        self.assertEqual(other.closed(), [])

    def test_qt_dialogs_about_the_battery_are_closed_and_no_others(self):
        self.start()
        popups = self.show('plasmashell', QT_POPUPS, 'english', 'ordinary', 'spanish')
        self.desktop.unplug()
        self.await_closed(popups, 'english', 'spanish')
        time.sleep(3.5)
        self.assertEqual(self.count() - self.before, 2, 'what is only hidden was closed again')

    def test_trees_of_ten_thousand_and_in_circles(self):
        self.start()
        for kind in ('huge', 'cycle'):
            popups = self.show_fake(kind)
            self.desktop.unplug()
            wait_for(f'the pop-up in {kind} closed', lambda: '/close' in popups.closed(), 20)
            wait_for('the end of the look', lambda: any(line.startswith('calls') for line in popups.said()))
            calls = int(next(line.split()[1] for line in popups.said() if line.startswith('calls')))
            # Five questions about each of two thousand elements, and the texts.
            self.assertLess(calls, 10200)
            print(f'{kind}: {calls} calls')
            self.desktop.plug_in()
            self.desktop.end(popups)

    def test_a_hung_program_delays_no_alert(self):
        levels = [rule('macBelow', threshold=level, notifies=True) for level in range(8, 19, 2)]
        self.start({**ON, **settings(*levels)}, level=19)
        messages = Messages(self.desktop, 'DBUS_SESSION_BUS_ADDRESS', NOTIFICATIONS)
        battery = Messages(self.desktop, 'DBUS_SYSTEM_BUS_ADDRESS', BATTERY)
        popups = self.show_gtk('ordinary')
        self.desktop.unplug()

        def alert_during_a_look(level):
            """From UPower's word to the alert when the battery falls while Kivo waits for the program's answer."""
            asked = Messages(self.desktop, 'A11Y_ADDRESS', "interface='org.a11y.atspi.Accessible',member='GetState'"
                             if popups.running else "member='GetChildren',path='/org/a11y/atspi/accessible/root'")
            seen, told = len(asked.seen), len(messages.notifications())
            wait_for('a look', lambda: len(asked.seen) > seen, 20, 0.002)
            before = len(battery.seen)
            self.set_level(level)
            wait_for('the alert', lambda: len(messages.notifications()) > told, 20)
            self.desktop.end(asked.process)
            return messages.notifications()[-1][0] - battery.seen[before][0]

        popups.running = True
        usual = alert_during_a_look(17)
        popups.running = False
        popups.send_signal(signal.SIGSTOP)
        self.addCleanup(popups.send_signal, signal.SIGCONT)
        hung = [alert_during_a_look(level) for level in (15, 13, 11)]
        print(f'an alert after {usual * 1000:.1f} ms; beside a hung program after',
              ' '.join(f'{delay * 1000:.1f}' for delay in hung), 'ms')
        self.assertLess(sorted(hung)[1], usual + 0.05)

    def test_plasmas_own_notice_is_silent_while_kivo_gives_one(self):
        self.desktop.become_plasma()
        self.addCleanup(self.desktop.env.pop, 'XDG_CURRENT_DESKTOP')
        told = Messages(self.desktop, 'DBUS_SESSION_BUS_ADDRESS', "interface='org.kde.knotification'")
        seen = len(told.seen)
        await_notice = self.desktop.await_plasmas_notice
        kivo = self.start()
        await_notice(is_silent=True)
        wait_for('the word to programs that know the old text', lambda: 'powerdevil' in str(told.seen[seen:]), 20)
        kivo.quit()
        await_notice(is_silent=False)

        kivo = self.start()
        await_notice(is_silent=True)
        self.desktop.end(kivo.process, how=signal.SIGKILL)
        await_notice(is_silent=True)
        self.start({**ON, 'dismissesSystemAlerts': False})
        await_notice(is_silent=False)


class TrustTest(KivoTest):
    """Accessibility that is off, and goes on and off again."""

    def test_trust_follows_the_desktop(self):
        with AccessibleDesktop(sound=False) as desktop:
            desktop.start_accessibility(is_enabled=False)
            kivo = Kivo(desktop, ON)
            self.addCleanup(kivo.quit)
            desktop.hardware('set', 'BAT0', {'capacity': '10', 'energy_now': '5000000'})
            kivo.await_level(10)
            desktop.unplug()
            # Started while accessibility is off, some toolkits would stay out of it.
            popups = desktop.show('xfce4-notifyd', '/usr/bin/python3', f'{HERE}/popups/gtk_popups.py', 'english')
            time.sleep(1)
            self.assertEqual(popups.closed(), [], 'without trust nothing is read')
            self.assertFalse(desktop.is_enabled(), 'a setting from before asks for nothing')
            desktop.enable('true')
            wait_for('the pop-up closed', lambda: popups.closed() == ['english'], 20)
            desktop.end(desktop.launcher)
            kivo.await_level(10)

    def test_the_switch_in_the_settings_asks_for_trust_and_silences_the_desktop(self):
        with AccessibleDesktop(sound=False) as desktop:
            desktop.start_accessibility(is_enabled=False)
            desktop.become_plasma()
            # Or the test could not press anything in it.
            desktop.env['QT_LINUX_ACCESSIBILITY_ALWAYS_ON'] = '1'
            desktop.hardware('set', 'BAT0', {'capacity': '10', 'energy_now': '5000000'})
            kivo = Kivo(desktop, {**ON, 'dismissesSystemAlerts': False})
            self.addCleanup(kivo.quit)
            kivo.await_level(10)
            desktop.unplug()
            popups = desktop.show('xfce4-notifyd', '/usr/bin/python3', f'{HERE}/popups/gtk_popups.py', 'english')
            desktop.spawn('settings', [kivo_module.BINARY, '--settings'])

            def accessible(*arguments):
                return desktop.output(['/usr/bin/python3', f'{HERE}/accessible.py', *arguments])
            wait_for('the settings', lambda: 'General' in accessible('tree', 'Kivo'), 20)
            accessible('do', 'Kivo', 'General', 'Press')
            switch = "Close the system's battery pop-ups"
            wait_for('the switch in the settings', lambda: switch in accessible('tree', 'Kivo'), 20)
            self.assertFalse(desktop.is_enabled())
            accessible('do', 'Kivo', switch, 'Toggle')
            wait_for('accessibility enabled', desktop.is_enabled, 20)
            wait_for('the pop-up closed', lambda: popups.closed() == ['english'], 20)
            desktop.await_plasmas_notice(is_silent=True)
            accessible('do', 'Kivo', switch, 'Toggle')
            desktop.await_plasmas_notice(is_silent=False)


class NotificationDaemonTest(KivoTest):
    """Programs that desktops show their notifications with, as Debian has them."""

    def test_their_low_battery_notifications_are_closed_and_no_others(self):
        with AccessibleDesktop(sound=False, notifications=False) as desktop:
            desktop.start_accessibility(is_enabled=True)
            desktop.spawn('openbox', ['openbox'])
            desktop.hardware('set', 'BAT0', {'capacity': '10', 'energy_now': '5000000'})
            kivo = Kivo(desktop, ON)
            self.addCleanup(kivo.quit)
            kivo.await_level(10)
            for path in DAEMONS:
                name = os.path.basename(path)
                daemon = desktop.spawn(name, ['env', '-u', 'NO_AT_BRIDGE', path])
                desktop.wait_name('DBUS_SESSION_BUS_ADDRESS', 'org.freedesktop.Notifications', 20)
                closed = Messages(desktop, 'DBUS_SESSION_BUS_ADDRESS', NOTIFICATIONS + ",member='NotificationClosed'")
                first = len(closed.seen)
                # One of them shows one notification at a time.
                ids = [self.post(desktop, *texts) for texts in (('Power', 'Low battery: 10% left'),
                                                                ('Energía', 'Batería baja'),
                                                                ('Mail', 'Three new messages'))]
                desktop.unplug()
                wanted = [f'uint32 {number}' for number in ids[:2]]

                def numbers():
                    return sorted(lines[1] for _, lines in closed.seen[first:] if 'NotificationClosed' in lines[0])
                wait_for(f'{name} to close {wanted}', lambda: numbers() == wanted, 20)
                desktop.plug_in()
                desktop.end(daemon)
                desktop.end(closed.process)

    def post(self, desktop, title, body):
        answer = desktop.call('DBUS_SESSION_BUS_ADDRESS', 'org.freedesktop.Notifications',
                              '/org/freedesktop/Notifications', 'org.freedesktop.Notifications.Notify', 'Power', '0',
                              '', title, body, "['show', 'Show']", '{}', '0')
        return int(re.search(r'uint32 (\d+)', answer)[1])


if __name__ == '__main__':
    QT_POPUPS = os.path.abspath(sys.argv.pop(2))
    run()
