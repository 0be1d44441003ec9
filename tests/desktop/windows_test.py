# SPDX-License-Identifier: MIT
"""The introduction and the settings, by keyboard and by ear: what they change, what they leave when they close."""
import json
import os
import time

from desktop import wait_for
from dismiss_test import AccessibleDesktop
from kivo import Kivo, KivoTest, run, settings, rule
import kivo as program

HERE = os.path.dirname(os.path.abspath(__file__))
SEEN = json.dumps({'onboarding.completed.v1': True})
NEW = '{}'
APPLE_EPOCH = 978307200
CONTROLS = {'push button', 'check box', 'radio button', 'slider', 'combo box', 'page tab', 'toggle button', 'scroll bar'}
TITLES = ['Your battery, no surprises', 'When do you want to know?', 'All your batteries, together',
          'A few finishing touches', 'All set, Kivo has your back']


def ledger():
    """An hour ago a browser used most of the energy, next to three others."""
    used = {'browser': 9000.0, 'editor': 1200.0, 'indexer': 600.0, 'player': 4.0}
    return {'buckets': [{'hourStart': (time.time() - APPLE_EPOCH) // 3600 * 3600, 'joules': used}],
            'identities': {key: {'key': key, 'name': key.title(), 'isApp': key != 'indexer'} for key in used}}


class WindowsTest(KivoTest):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(AccessibleDesktop(sound=False, upower=False))
        cls.desktop.start_accessibility(is_enabled=True)
        cls.desktop.spawn('openbox', ['openbox', '--sm-disable'])

    def start(self, stored):
        kivo = Kivo(self.desktop, stored)
        self.addCleanup(kivo.quit)
        return kivo

    def xdotool(self, *words):
        return self.desktop.output(['xdotool', *map(str, words)])

    def key(self, *keys):
        self.xdotool('key', '--delay', '30', *keys)

    def windows(self, name):
        return self.xdotool('search', '--onlyvisible', '--name', name).split()

    def await_focus(self, name):
        wait_for(f'the focus of {name}', lambda: self.xdotool('getwindowfocus', 'getwindowname').strip() == name, 20)

    def await_no_window(self, name):
        wait_for(f'{name} to close', lambda: not self.windows(name), 20)

    def tree(self):
        """[(role, name, states, actions)] of what shows, in reading order."""
        lines = self.desktop.output(['/usr/bin/python3', '-W', 'ignore', f'{HERE}/accessible.py', 'tree',
                                     'Kivo']).splitlines()
        return [(role, name, states.split(), actions)
                for role, name, states, actions in (line.split('\t') for line in lines if line.count('\t') == 3)]

    def await_things(self, *names):
        def shown():
            tree = self.tree()
            return tree if set(names) <= {name for _, name, _, _ in tree} else None
        return wait_for(f'{names} in the accessible tree', shown, 20)

    def is_checked(self, name, role='check box'):
        return next('checked' in states for each, said, states, _ in self.tree() if (each, said) == (role, name))

    def stored(self, kivo):
        with open(kivo.settings_file, encoding='utf-8') as file:
            return json.load(file)

    def open_settings(self, tab=None):
        """As a second start asks for them."""
        second = self.desktop.spawn('second', [program.BINARY, '--settings'])
        self.assertEqual(second.wait(20), 0)
        self.await_focus('Kivo Settings')
        if tab:
            self.key(f'ctrl+{tab}')

    def assertAllNamed(self, tree):
        nameless = [role for role, name, _, _ in tree if role in CONTROLS and not name]
        self.assertEqual(nameless, [], 'controls that no screen reader can name')

    def test_the_first_start_introduces_kivo_once(self):
        kivo = self.start(NEW)
        self.await_focus('Kivo')
        for number, title in enumerate(TITLES, 1):
            tree = self.await_things(title, f'Step {number} of 5')
            self.assertAllNamed(tree)
            self.assertEqual('Back' in {name for _, name, _, _ in tree}, number > 1)
            # The way on has the focus on every page.
            self.key('space')
        self.await_no_window('^Kivo$')
        wait_for('the note that it was seen', lambda: self.stored(kivo).get('onboarding.completed.v1'), 20)
        kivo.quit()
        kivo.restart()
        self.open_settings()  # what comes up is no introduction
        self.assertEqual(self.windows('^Kivo$'), [])

    def test_closing_the_introduction_counts_as_having_seen_it_and_ending_kivo_does_not(self):
        kivo = self.start(NEW)
        self.await_focus('Kivo')
        kivo.quit()
        self.assertNotIn('onboarding.completed.v1', self.stored(kivo))
        kivo.restart()
        self.await_focus('Kivo')
        self.key('Escape')
        self.await_no_window('^Kivo$')
        wait_for('the note that it was seen', lambda: self.stored(kivo).get('onboarding.completed.v1'), 20)

    def test_a_rule_is_switched_and_edited_by_keyboard_and_stays_so(self):
        kivo = self.start(settings(rule('unplugged'), rule('macBelow', threshold=20)))
        self.open_settings()
        tree = self.await_things('Drops below 20%', 'When unplugged', 'Add alert')
        self.assertAllNamed(tree)
        names = [name for role, name, _, _ in tree if role in CONTROLS]
        self.assertLess(names.index('Drops below 20%'), names.index('Add alert'), 'reading order')
        self.key('Tab', 'Return')  # unfolds the first rule
        self.await_things('Percentage', 'Position', 'Color', 'Sound', 'Test', 'Delete')
        self.assertAllNamed(self.tree())
        self.key('Tab', 'space', 'Tab', 'Right', 'Right')  # its switch, its slider
        self.await_things('Drops below 22%')
        self.assertFalse(self.is_checked('Drops below 22%'))

        def written():
            edited = self.stored(kivo)['alertSettings.v2']['rules'][1]
            return (edited['isEnabled'], edited['trigger']) == (False, {'macBelow': {'_0': 22}})
        wait_for('the rule in the file', written, 20)
        # On to the sounds, whose menu Escape closes alone, and back to the colour that is chosen.
        self.key('Tab', 'Tab', 'Tab', 'space')
        time.sleep(0.5)
        self.key('Escape', 'shift+Tab', 'Right')

        def coloured():
            return self.stored(kivo)['alertSettings.v2']['rules'][1]['tint'] == 'green'
        wait_for('the second colour in the file', coloured, 20)
        self.key('ctrl+w')
        self.await_no_window('Kivo Settings')
        kivo.quit()
        kivo.restart()
        self.open_settings()
        self.await_things('Drops below 22%', 'When unplugged')
        self.assertFalse(self.is_checked('Drops below 22%'))
        self.assertTrue(self.is_checked('When unplugged'))

    def test_every_tab_is_named_and_remembered_and_the_energy_shows(self):
        folder = self.desktop.path('home', 'data', 'kivo')
        os.makedirs(folder, exist_ok=True)
        with open(f'{folder}/energy.json', 'w', encoding='utf-8') as file:
            json.dump(ledger(), file)
        kivo = self.start(SEEN)
        self.open_settings(tab=2)
        tree = self.await_things('Browser', 'Editor', 'Player', 'Energy by app')
        self.assertAllNamed(tree)
        self.assertNotIn('Indexer', {name for _, name, _, _ in tree})
        self.key('ctrl+3')
        self.assertAllNamed(self.await_things('Compact (iPhone style)', 'Percentage only'))
        self.key('ctrl+4')
        self.assertAllNamed(self.await_things('On-screen animations', 'Open at login', 'Privacy'))
        self.key('Escape')
        self.await_no_window('Kivo Settings')
        self.open_settings()
        self.await_things('On-screen animations')
        self.open_settings()  # the same window again
        self.assertEqual(len(self.windows('Kivo Settings')), 1)
        wait_for('the tab in the file', lambda: self.stored(kivo).get('settingsTab') == 'general', 20)

    def test_what_closed_leaves_no_memory_and_no_work(self):
        kivo = self.start(SEEN)
        time.sleep(1)

        def anonymous():
            with open(f'/proc/{kivo.process.pid}/smaps_rollup', encoding='ascii') as file:
                return next(int(line.split()[1]) for line in file if line.startswith('Anonymous:'))

        def ticks():
            with open(f'/proc/{kivo.process.pid}/stat', encoding='ascii') as file:
                return sum(map(int, file.read().split()[13:15]))
        before = anonymous()
        for tab in (1, 2, 3, 4):
            self.open_settings(tab)
            self.key('Escape')
            self.await_no_window('Kivo Settings')
        time.sleep(0.5)
        after, used = anonymous(), ticks()
        time.sleep(3)
        print(f'{after - before} kB more after four visits', flush=True)
        self.assertLess(after - before, 3 * 1024)
        self.assertLessEqual(ticks() - used, 1, 'something goes on in a window that is closed')


if __name__ == '__main__':
    run()
