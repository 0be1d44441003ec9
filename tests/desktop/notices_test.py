# SPDX-License-Identifier: MIT
"""kivo-notices on GNOME's real settings, kept by dconf and in a file: notices_test.py KIVO-NOTICES"""
import os
import signal
import subprocess
import sys
import tempfile
import unittest

from desktop import HERE, Failure, wait_for

PROGRAM = None
PATH = 'org.gnome.desktop.notifications.application:/org/gnome/desktop/notifications/application/gnome-power-panel/'
# What the user set, not what counts by default.
USER_VALUE = f"""
from gi.repository import Gio
schema, path = '{PATH}'.split(':')
value = Gio.Settings.new_with_path(schema, path).get_user_value('enable')
print('' if value is None else value.print_(False))
"""


class NoticesTest(unittest.TestCase):
    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix='kv', dir='/tmp'))
        self.env = {'PATH': '/usr/bin:/bin', 'HOME': self.folder, 'XDG_CONFIG_HOME': f'{self.folder}/config',
                    'XDG_DATA_HOME': f'{self.folder}/data', 'XDG_RUNTIME_DIR': self.folder,
                    'XDG_CURRENT_DESKTOP': 'ubuntu:GNOME'}
        self.memory = f'{self.folder}/data/kivo/desktop-notices.json'

    def spawn(self, command, **how):
        process = subprocess.Popen(command, env=self.env, stdin=subprocess.DEVNULL, **how)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def use_file(self):
        self.env['GSETTINGS_BACKEND'] = 'keyfile'

    def use_dconf(self):
        bus = self.spawn(['dbus-daemon', f'--config-file={HERE}/bus.conf', '--nofork', '--print-address=1'],
                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.env['DBUS_SESSION_BUS_ADDRESS'] = bus.stdout.readline().strip()
        bus.stdout.close()
        self.env['GSETTINGS_BACKEND'] = 'dconf'
        self.dconf = self.spawn(['/usr/libexec/dconf-service'])
        wait_for('dconf', lambda: 'true' in self.output(
            ['gdbus', 'call', '--session', '-d', 'org.freedesktop.DBus', '-o', '/', '-m',
             'org.freedesktop.DBus.NameHasOwner', 'ca.desrt.dconf']), 20)

    def output(self, command):
        return subprocess.run(command, env=self.env, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=60, check=False, text=True).stdout.strip()

    def value(self):
        return self.output(['/usr/bin/python3', '-c', USER_VALUE])

    def set(self, value):
        self.output(['gsettings', 'set', PATH, 'enable', value] if value else ['gsettings', 'reset', PATH, 'enable'])
        self.assertEqual(self.value(), value)

    def notices(self, order):
        return self.output([PROGRAM, order])

    def round_trips(self):
        for before in ('', 'true', 'false'):
            self.set(before)
            changed = '' if before == 'false' else 'gnome'
            self.assertEqual(self.notices('silence'), changed)
            self.assertEqual(self.value(), 'false')
            self.assertEqual(os.path.exists(self.memory), before != 'false')
            self.assertEqual(self.notices('silence'), '')
            self.assertEqual(self.notices('restore'), changed)
            self.assertEqual(self.value(), before)
            self.assertFalse(os.path.exists(self.memory))
        self.set('')
        self.notices('silence')
        self.set('true')
        self.assertEqual(self.notices('restore'), '', 'what the user chose since stays')
        self.assertEqual(self.value(), 'true')

    def test_settings_in_a_file(self):
        self.use_file()
        self.round_trips()

    def test_settings_in_dconf(self):
        self.use_dconf()
        self.round_trips()

    def test_killed_in_between_with_dconf(self):
        self.use_dconf()

        def kill_during(order, has_begun):
            self.dconf.send_signal(signal.SIGSTOP)
            try:
                helper = self.spawn([PROGRAM, order], stdout=subprocess.DEVNULL)
                wait_for(f'the middle of {order}', has_begun, 20)
                with self.assertRaises(subprocess.TimeoutExpired, msg='it did not wait for dconf'):
                    helper.wait(0.3)
                helper.kill()
                helper.wait()
            finally:
                self.dconf.send_signal(signal.SIGCONT)

        for before in ('', 'true'):
            self.set(before)
            kill_during('silence', lambda: os.path.exists(self.memory))
            self.notices('silence')
            self.assertEqual(self.value(), 'false')
            kill_during('restore', lambda: True)
            self.assertTrue(os.path.exists(self.memory), 'forgotten before it was back')
            self.notices('restore')
            self.assertEqual(self.value(), before)
            self.assertFalse(os.path.exists(self.memory))

    def test_other_desktops_keep_theirs(self):
        self.use_file()
        for desktop in ('XFCE', 'KDE', ''):
            self.env['XDG_CURRENT_DESKTOP'] = desktop
            self.assertEqual(self.notices('silence'), '')
        self.env['XDG_CURRENT_DESKTOP'] = 'GNOME'
        # Without the schema there is no switch either.
        self.env['GSETTINGS_SCHEMA_DIR'] = self.env['XDG_DATA_DIRS'] = self.folder
        self.assertEqual(self.notices('silence'), '')
        del self.env['GSETTINGS_SCHEMA_DIR'], self.env['XDG_DATA_DIRS']
        self.assertEqual(self.value(), '')
        # Changed on one desktop, it comes back on another.
        self.assertEqual(self.notices('silence'), 'gnome')
        self.env['XDG_CURRENT_DESKTOP'] = 'sway'
        self.assertEqual(self.notices('restore'), 'gnome')
        self.assertEqual(self.value(), '')


if __name__ == '__main__':
    PROGRAM = os.path.abspath(sys.argv.pop(1))
    if not os.access(PROGRAM, os.X_OK):
        raise Failure(f'{PROGRAM} is no program')
    unittest.main()
