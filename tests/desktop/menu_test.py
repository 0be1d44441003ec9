# SPDX-License-Identifier: MIT
"""The tray icon and the menu under it, by mouse, by keyboard and by ear, in trays of both kinds and without one."""
import json
import os
import re
import signal
import time

from desktop import Desktop, near, wait_for
from dismiss_test import AccessibleDesktop
from kivo import CHARGING, Kivo, KivoTest, run, settings

HERE = os.path.dirname(os.path.abspath(__file__))
ICON = (16, 16)  # in the panel at the top left
WIDTH = 340
APPLE_EPOCH = 978307200


def with_phone():
    """Settings, and a phone that was seen two hours ago."""
    phone = {'id': 'phone', 'name': "Ada's iPhone", 'category': 'iphone', 'level': 57, 'isCharging': False,
             'parts': [], 'lastSeen': time.time() - APPLE_EPOCH - 7300}
    return json.dumps({'alertSettings.v2': settings(), 'iosDevices.remembered.v1': [phone],
                       'onboarding.completed.v1': True})


class MenuDriver(KivoTest):
    desktop = None

    def start(self, stored=None, **how):
        self.desktop.plug_in()
        self.desktop.hardware('set', 'BAT0', {'capacity': '79', 'energy_now': '39500000'})
        kivo = Kivo(self.desktop, stored or with_phone(), **how)
        self.addCleanup(kivo.quit)
        if how.get('tray', True):
            kivo.await_level(79)
            wait_for('the icon in the panel',
                     lambda: self.desktop.screenshot().part(0, 0, 32, 32).where(near(CHARGING, 30))[1] > 20, 20)
        return kivo

    def xdotool(self, *words):
        return self.desktop.output(['xdotool', *map(str, words)])

    def click(self, place=ICON, button=1):
        self.xdotool('mousemove', *place, 'click', button)

    def key(self, *keys):
        self.xdotool('key', *keys)

    def menu(self):
        """(x, y, width, height) of the open menu, or None."""
        for window in self.xdotool('search', '--onlyvisible', '--name', '^Kivo$').split():
            numbers = dict(re.findall(r'(X|Y|WIDTH|HEIGHT)=(-?\d+)',
                                      self.xdotool('getwindowgeometry', '--shell', window)))
            x, y, width, height = (int(numbers.get(name, 0)) for name in ('X', 'Y', 'WIDTH', 'HEIGHT'))
            if width == WIDTH and height > 150:
                return x, y, width, height
        return None

    def await_menu(self):
        box = wait_for('the menu', self.menu, 20)
        # Painted, with the level's bar in it.
        wait_for('the menu in its colours', lambda: self.desktop.screenshot().part(*box).where(
            near(CHARGING, 24))[1] > 1500, 20)
        wait_for('the focus', lambda: self.xdotool('getwindowfocus', 'getwindowname').strip() == 'Kivo', 20)
        return box

    def await_no_menu(self):
        wait_for('the menu to close', lambda: self.menu() is None, 20)

    def assertStaysClosed(self, seconds=0.8):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.assertIsNone(self.menu())

    def stored(self, kivo):
        with open(kivo.settings_file, encoding='utf-8') as file:
            return json.load(file)


class MenuTest(MenuDriver):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(AccessibleDesktop(sound=False, notifications=False))
        cls.desktop.start_accessibility(is_enabled=True)
        cls.desktop.spawn('openbox', ['openbox', '--sm-disable'])

    def tree(self):
        """{name: (role, states, actions)} of what shows."""
        lines = self.desktop.output(['/usr/bin/python3', f'{HERE}/accessible.py', 'tree', 'Kivo']).splitlines()
        things = (line.split('\t') for line in lines if line.count('\t') == 3)
        return {name: (role, states.split(), actions) for role, name, states, actions in things}

    def await_thing(self, name):
        return wait_for(f'{name} in the accessible tree', lambda: self.tree().get(name), 10)

    def test_a_click_opens_it_under_the_icon_and_the_next_one_closes_it(self):
        self.start()
        self.click()
        x, y, width, height = self.await_menu()
        self.assertTrue(0 <= x <= 16 and 30 <= y <= 60, f'at {x}, {y}')
        self.assertLessEqual(height, 0.7 * 800 + 1)
        self.click()
        self.await_no_menu()
        self.assertStaysClosed()
        self.click()
        self.await_menu()
        self.key('Escape')
        self.await_no_menu()

    def test_it_closes_when_another_window_gets_the_focus(self):
        self.start()
        other = self.desktop.spawn('xev', ['xev', '-geometry', '200x200+800+400'])
        self.addCleanup(self.desktop.end, other)
        wait_for('the other window', lambda: self.xdotool('search', '--onlyvisible', '--name', 'Event Tester'), 10)
        self.click()
        self.await_menu()
        self.click((900, 500))
        self.await_no_menu()
        time.sleep(0.5)  # no part of that click any more
        self.click()
        self.await_menu()

    def test_the_keyboard_does_everything(self):
        kivo = self.start()
        self.click()
        self.await_menu()
        self.key('End', 'Up', 'Up', 'space')  # Quit, Settings, Sounds
        wait_for('the sounds to be off', lambda: self.stored(kivo)['alertSettings.v2'].get('playsSound') is False, 10)
        self.key('ctrl+comma')
        self.await_no_menu()
        # It takes the focus when it comes: only then does the menu keep it.
        wait_for('the settings', lambda: 'Settings' in self.xdotool('getwindowfocus', 'getwindowname'), 20)
        self.click()
        self.await_menu()
        self.key('ctrl+q')
        self.assertEqual(wait_for('the end', lambda: kivo.process.poll() is not None and [kivo.process.returncode], 10), [0])

    def test_a_device_is_forgotten_by_keyboard(self):
        kivo = self.start()
        self.click()
        self.await_menu()
        self.key('Home', 'Delete')
        wait_for('an empty memory', lambda: not self.stored(kivo).get('iosDevices.remembered.v1'), 10)
        self.await_thing('Devices')

    def test_it_is_read_aloud_and_follows_the_battery(self):
        kivo = self.start()
        self.click()
        self.await_menu()
        hero = next(name for name in self.tree() if '79%, Charging' in name)
        self.assertIn('Health 83%', hero)
        self.assertEqual(self.await_thing("Ada's iPhone, 57%, Seen 2 hours ago")[0], 'list item')
        self.assertEqual(self.await_thing('Cycles, 217, charge cycles')[0], 'label')
        role, states, actions = self.await_thing('Sounds')
        self.assertEqual((role, 'checked' in states, 'Toggle' in actions), ('check box', True, True))
        self.assertIn('Forget', self.await_thing("Ada's iPhone, 57%, Seen 2 hours ago")[2])
        self.desktop.unplug()
        wait_for('On Battery in the tree', lambda: any('On Battery' in name for name in self.tree()), 10)
        self.desktop.output(['/usr/bin/python3', f'{HERE}/accessible.py', 'do', 'Kivo', 'Sounds', 'Toggle'])
        wait_for('the sounds to be off', lambda: self.stored(kivo)['alertSettings.v2'].get('playsSound') is False, 10)

    def test_starting_it_again_opens_the_menu(self):
        kivo = self.start()
        second = kivo.launch()
        box = self.await_menu()
        self.assertEqual(wait_for('the end of the second', lambda: second.poll() is not None and [second.returncode]), [0])
        kivo.launch()
        time.sleep(0.5)
        self.assertEqual(self.menu(), box, 'an open one stays')

    def test_the_icon_speaks(self):
        kivo = self.start()
        self.assertRegex(str(kivo._tray('Title')), r'^Kivo: Battery 79 percent, Charging')
        self.assertEqual(list(kivo.menu()), ['Open Kivo', 'Settings…', '', 'Quit Kivo'])
        kivo.choose(kivo.menu()['Open Kivo'])
        self.await_menu()


class OldTrayTest(MenuDriver):
    """A tray that knows XEmbed alone."""

    def setUp(self):
        self.desktop = self.enterContext(Desktop(tray=None, sound=False, notifications=False))
        self.desktop.spawn('openbox', ['openbox', '--sm-disable'])

    def tray(self, edge, across, along):
        """In the middle of that edge; `across` and `along` name its width and height."""
        return self.desktop.spawn('trayer', ['trayer', '--edge', edge, '--align', 'center', '--SetDockType', 'true',
                                             f'--{across}type', 'pixel', f'--{across}', '32', f'--{along}type', 'request'])

    def icon(self):
        """The middle of the green in the tray."""
        box, count = self.desktop.screenshot().where(near(CHARGING, 30))
        return count > 20 and (box[0] + box[2] // 2, box[1] + box[3] // 2)

    def await_icon(self):
        return wait_for('a green icon', self.icon, 25)

    def test_an_icon_in_the_tray_opens_it_and_comes_back_with_the_tray(self):
        tray = self.tray('bottom', 'height', 'width')
        self.start(tray=False)
        place = self.await_icon()
        self.assertGreater(place[1], 760)
        self.click(place)
        x, y, width, height = self.await_menu()
        self.assertTrue(700 <= y + height <= 800, f'ends at {y + height}')
        self.click(place)
        self.await_no_menu()
        self.desktop.end(tray, how=signal.SIGKILL)
        wait_for('no icon', lambda: not self.icon())
        self.tray('left', 'width', 'height')
        place = self.await_icon()
        self.assertLess(place[0], 40)
        self.click(place)
        x, *_ = self.await_menu()
        self.assertTrue(24 <= x <= 60, f'begins at {x}')

    def test_without_any_tray_starting_it_again_opens_the_menu(self):
        kivo = self.start(tray=False)
        time.sleep(1)
        kivo.launch()
        x, y, width, height = self.await_menu()
        self.assertTrue(x >= 0 and y >= 0 and x + width <= 1280 and y + height <= 800)
        self.key('Escape')
        self.await_no_menu()


if __name__ == '__main__':
    run()
