# SPDX-License-Identifier: MIT
"""Kivo on a Desktop, as its user meets it: what it shows, says and plays."""
import json
import os
import sys
import time
import unittest
import uuid

import dbus

from desktop import Failure, near, wait_for

# The program under test; run() takes it from the command line.
BINARY = None

# Where an island at the top of the screen without a notch stands: centred, of this size.
ISLAND = (372, 66)
LOOK_AT = (400, 0, 480, 160)  # of a screen 1280 wide; the tray ends left of it, notifications start right of it
CHARGING, NORMAL, LOW_POWER, CRITICAL = (52, 211, 91), (76, 217, 100), (255, 214, 10), (255, 59, 48)


def rule(trigger, notifies=False, sound='none', position='top', threshold=None, glows=False):
    payload = {} if threshold is None else {'_0': threshold}
    return {'id': str(uuid.uuid4()), 'trigger': {trigger: payload}, 'isEnabled': True, 'position': position,
            'glowsScreen': glows, 'sound': sound, 'tint': 'auto', 'notifies': notifies}


def settings(*rules, **switches):
    return {'rules': list(rules), **switches}


class Kivo:
    def __init__(self, desktop, stored=None, on_hardware=False, tray=True):
        """Starts Kivo and waits until its tray icon is there. `stored`: the settings of somebody who has seen the
        introduction, or the file's text."""
        self.desktop = desktop
        if stored is not None:
            self.settings_file = desktop.path('home', 'config', 'kivo', 'settings.json')
            os.makedirs(os.path.dirname(self.settings_file), exist_ok=True)
            with open(self.settings_file, 'w', encoding='utf-8') as file:
                file.write(stored if isinstance(stored, str) else json.dumps(
                    {'alertSettings.v2': stored, 'onboarding.completed.v1': True}))
        self.process = self.launch(on_hardware)
        if tray:
            self.await_tray()

    def launch(self, on_hardware=False):
        start = self.desktop.spawn_on_hardware if on_hardware else self.desktop.spawn
        return start('kivo', [BINARY])

    def restart(self):
        self.process = self.launch()
        self.await_tray()

    def quit(self):
        return self.desktop.end(self.process)

    # The tray

    def await_tray(self):
        self.item = wait_for("Kivo's tray icon", self._find_item, 10)

    def _session(self):
        return dbus.bus.BusConnection(self.desktop.env['DBUS_SESSION_BUS_ADDRESS'])

    def _find_item(self):
        if self.process.poll() is not None:
            raise Failure(f'Kivo ended with status {self.process.returncode}')
        bus = self._session()
        watcher = bus.get_object('org.kde.StatusNotifierWatcher', '/StatusNotifierWatcher', introspect=False)
        for item in watcher.Get('org.kde.StatusNotifierWatcher', 'RegisteredStatusNotifierItems',
                                dbus_interface=dbus.PROPERTIES_IFACE):
            name, _, path = str(item).partition('/')
            owner = bus.get_object('org.freedesktop.DBus', '/org/freedesktop/DBus', introspect=False)
            if owner.GetConnectionUnixProcessID(name, dbus_interface='org.freedesktop.DBus') == self.process.pid:
                return name, '/' + path
        return None

    def _tray(self, name):
        item = self._session().get_object(*self.item, introspect=False)
        return item.Get('org.kde.StatusNotifierItem', name, dbus_interface=dbus.PROPERTIES_IFACE)

    def tooltip(self):
        return str(self._tray('ToolTip')[2])

    def await_level(self, level):
        wait_for(f'{level}% in the tooltip', lambda: f'{level}%' in self.tooltip())

    def icon_colors(self):
        """The opaque pixels of the largest tray picture."""
        _, _, data = max(self._tray('IconPixmap'), key=lambda picture: picture[0])
        pixels = zip(*[iter(bytes(data))] * 4)
        return [pixel[1:] for pixel in pixels if pixel[0] > 250]

    def menu(self):
        """{label: number} of the tray's menu."""
        bus = self._session()
        menu = bus.get_object(self.item[0], self._tray('Menu'), introspect=False)
        _, (_, _, entries) = menu.GetLayout(0, -1, dbus.Array([], signature='s'),
                                            dbus_interface='com.canonical.dbusmenu')
        return {str(properties.get('label', '')).replace('_', ''): int(number) for number, properties, _ in entries}

    def choose(self, number):
        menu = self._session().get_object(self.item[0], self._tray('Menu'), introspect=False)
        menu.Event(dbus.Int32(number), 'clicked', dbus.Int32(0, variant_level=1), dbus.UInt32(0),
                   dbus_interface='com.canonical.dbusmenu', ignore_reply=True)

    # The island

    def island(self):
        """The island's picture with its place on the screen (x, y), or None when none is out."""
        look = self.desktop.screenshot().part(*LOOK_AT)
        box, count = look.where(near((0, 0, 0), 60))  # the rings' glow reaches the black body's edge
        if count < 200:
            return None
        return look.part(*box), (box[0] + LOOK_AT[0], box[1] + LOOK_AT[1])

    def await_island(self, seconds, since=None):
        """The first sign of an island, and the seconds it took from `since`."""
        since = time.monotonic() if since is None else since
        picture, _ = wait_for('an island', self.island, since + seconds - time.monotonic())
        return picture, time.monotonic() - since

    def await_full_island(self, seconds=2):
        def full():
            shown = self.island()
            good = shown and all(abs(a - b) <= 2 for a, b in zip((shown[0].width, shown[0].height), ISLAND))
            return shown if good else None
        return wait_for(f'an island of {ISLAND[0]} x {ISLAND[1]}', full, seconds)

    def await_no_island(self, seconds=6):
        wait_for('the island to leave', lambda: self.island() is None, seconds)


class KivoTest(unittest.TestCase):
    def assertNoIslandFor(self, kivo, seconds):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.assertIsNone(kivo.island(), 'an island where none should be')

    def assertShows(self, picture, color, share=0.002):
        """Some of the picture has that colour."""
        _, count = picture.where(near(color, 24))
        self.assertGreater(count, share * picture.width * picture.height, f'{color} is missing')


def run():
    """unittest's main program with Kivo's binary as the first argument."""
    global BINARY
    if len(sys.argv) < 2 or not os.access(sys.argv[1], os.X_OK):
        sys.exit('usage: TEST.py KIVO [unittest arguments]')
    BINARY = os.path.abspath(sys.argv.pop(1))
    unittest.main(module='__main__')

