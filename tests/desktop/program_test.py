# SPDX-License-Identifier: MIT
"""Kivo as a program of the desktop: its tray icon, its end, its settings file, its second start."""
import os
import signal
import time

from desktop import Desktop, near, wait_for
from kivo import CHARGING, CRITICAL, LOW_POWER, Kivo, KivoTest, rule, run, settings

QUIET = settings()


class ProgramTest(KivoTest):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop(sound=False))

    def start(self, stored=QUIET):
        self.desktop.output(['/usr/bin/powerprofilesctl', 'set', 'balanced'])
        self.desktop.plug_in()
        self.desktop.hardware('set', 'BAT0', {'capacity': '79', 'energy_now': '39500000'})
        kivo = Kivo(self.desktop, stored)
        self.addCleanup(kivo.quit)
        kivo.await_level(79)
        return kivo

    def assertColored(self, kivo, color):
        """In the picture that Kivo hands out, and in the panel."""
        def shows():
            return sum(map(near(color, 8), kivo.icon_colors())) > 10
        wait_for(f'a tray picture with {color}', shows)
        wait_for(f'{color} in the panel',
                 lambda: self.desktop.screenshot().part(0, 0, 384, 32).where(near(color, 24))[1] > 10)

    def test_the_tray_icon_follows_the_battery(self):
        kivo = self.start()
        self.assertColored(kivo, CHARGING)
        self.assertRegex(kivo.tooltip(), r'^79% · Charging')
        self.desktop.unplug()
        wait_for('a tray picture without colour', lambda: not any(map(near(CHARGING, 8), kivo.icon_colors())))
        self.assertRegex(kivo.tooltip(), r'^79% · On battery')
        self.desktop.output(['/usr/bin/powerprofilesctl', 'set', 'power-saver'])
        self.assertColored(kivo, LOW_POWER)
        self.desktop.hardware('set', 'BAT0', {'capacity': '9', 'energy_now': '4500000'})
        self.assertColored(kivo, CRITICAL)
        kivo.await_level(9)

    def test_the_tray_icon_comes_back_with_the_tray(self):
        kivo = self.start()
        self.desktop.end(self.desktop.panel, how=signal.SIGKILL)
        self.desktop.start_tray()
        kivo.await_tray()
        self.assertColored(kivo, CHARGING)

    def test_quit_in_the_menu_ends_it(self):
        kivo = self.start()
        entries = kivo.menu()
        quit_entry = next((number for label, number in entries.items() if label.startswith('Quit')), None)
        self.assertIsNotNone(quit_entry, f'no Quit among {list(entries)}')
        kivo.choose(quit_entry)
        self.assertEqual(wait_for('the end', lambda: kivo.process.poll() is not None and [kivo.process.returncode]), [0])

    def test_a_second_start_leaves_the_first_alone(self):
        kivo = self.start()
        second = kivo.launch()
        wait_for('the end of the second', lambda: second.poll() is not None)
        self.assertEqual(second.returncode, 0)
        self.assertIsNone(kivo.process.poll())
        # One that was killed does not stand in the way of the next.
        self.desktop.end(kivo.process, how=signal.SIGKILL)
        kivo.restart()
        kivo.await_level(79)

    def test_an_ordinary_end_on_a_signal(self):
        self.assertEqual(self.start().quit(), 0)

    def test_unreadable_settings_mean_the_usual_ones_and_are_kept(self):
        kivo = self.start('{"alertSettings.v2": {"rules": [')
        # The introduction, as for a new user: out of the island's way.
        self.desktop.output(['xdotool', 'search', '--sync', '--onlyvisible', '--name', '^Kivo$',
                             'windowmove', '--sync', '0', '200'])
        self.desktop.unplug()  # an island by the usual rules
        kivo.await_full_island()
        kivo.quit()
        with open(kivo.settings_file, encoding='utf-8') as file:
            self.assertEqual(file.read(), '{"alertSettings.v2": {"rules": [')

    def test_settings_survive_a_kill(self):
        kivo = self.start(settings(rule('unplugged', position='center')))
        with open(kivo.settings_file, encoding='utf-8') as file:
            before = file.read()
        self.desktop.end(kivo.process, how=signal.SIGKILL)
        self.assertTrue(os.path.exists(kivo.settings_file))
        kivo.restart()
        kivo.await_level(79)
        self.desktop.unplug()
        # In the middle of the screen, and so not at its top.
        wait_for('an island in the middle', lambda: self.desktop.screenshot().part(460, 370, 360, 60).where(
            near((0, 0, 0), 2))[1] > 5000, 2)
        self.assertIsNone(kivo.island())
        with open(kivo.settings_file, encoding='utf-8') as file:
            self.assertEqual(file.read(), before)

    def test_a_desktop_whose_tray_comes_later(self):
        with Desktop(tray=None, sound=False) as desktop:
            kivo = Kivo(desktop, settings(rule('unplugged')), tray=False)
            desktop.start_tray()
            kivo.await_tray()
            kivo.await_level(79)
            desktop.unplug()
            kivo.await_full_island()


if __name__ == '__main__':
    run()
