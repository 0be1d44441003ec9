# SPDX-License-Identifier: MIT
"""Accessories by way of the real UPower and a mocked BlueZ, from the device to notification and widgets' list."""
import json
import time

import dbus

from desktop import Desktop, Messages, wait_for
from kivo import Kivo, KivoTest, rule, run, settings

RULES = settings(rule('deviceBelow', notifies=True, threshold=20), rule('deviceConnected', notifies=True),
                 showsOverlay=False, playsSound=False)
POLL = 40  # seconds: the list is read every 30, and waits may be stretched by 5
HEADSET = '11:22:33:44:55:66'


class Bluetooth:
    """Devices with batteries, as BlueZ would list them."""
    MOCK = 'org.freedesktop.DBus.Mock'

    def __init__(self, desktop):
        desktop.spawn('bluez', ['/usr/bin/python3', '-m', 'dbusmock', '--system', '-t', 'bluez5'])
        desktop.wait_name('DBUS_SYSTEM_BUS_ADDRESS', 'org.bluez')
        self.bus = dbus.bus.BusConnection(desktop.env['DBUS_SYSTEM_BUS_ADDRESS'])
        self.manager = dbus.Interface(self.bus.get_object('org.bluez', '/org/bluez'), 'org.bluez.Mock')
        self.manager.AddAdapter('hci0', 'laptop')

    def connect(self, address, name, percent, kind=0x240404, icon='audio-headset'):
        self.manager.AddDevice('hci0', address, name)
        self.manager.PairDevice('hci0', address, kind)
        self.manager.ConnectDevice('hci0', address)
        path = '/org/bluez/hci0/dev_' + address.replace(':', '_')
        device = self.bus.get_object('org.bluez', path)
        battery = dbus.Dictionary({'Percentage': dbus.Byte(percent)}, signature='sv')
        # The mock forgets the class on pairing.
        device.UpdateProperties('org.bluez.Device1', dbus.Dictionary({'Class': dbus.UInt32(kind), 'Icon': icon},
                                                                     signature='sv'), dbus_interface=self.MOCK)
        device.AddProperties('org.bluez.Battery1', battery, dbus_interface=self.MOCK)
        added = [dbus.ObjectPath(path), dbus.Dictionary({'org.bluez.Battery1': battery}, signature='sa{sv}')]
        self.bus.get_object('org.bluez', '/').EmitSignal('org.freedesktop.DBus.ObjectManager', 'InterfacesAdded',
                                                         'oa{sa{sv}}', added, dbus_interface=self.MOCK)


class DeviceTest(KivoTest):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop())

    def listed(self):
        """{name: (category, level)} of the widgets' list, without the computer."""
        try:
            with open(self.desktop.path('home', 'data', 'kivo', 'widgets.json'), encoding='utf-8') as file:
                devices = json.load(file)['devices.v1']
        except (FileNotFoundError, KeyError):
            return {}
        return {one['name']: (one['category'], one['level']) for one in devices if one['category'] != 'mac'}

    def test_a_mouse_gets_low_and_a_headset_connects(self):
        bluetooth = Bluetooth(self.desktop)
        self.desktop.hardware('mouse', '42')
        wait_for('the mouse in UPower', lambda: 'hidpp_battery_0' in self.desktop.call(
            'DBUS_SYSTEM_BUS_ADDRESS', 'org.freedesktop.UPower', '/org/freedesktop/UPower',
            'org.freedesktop.UPower.EnumerateDevices'))
        messages = Messages(self.desktop, 'DBUS_SESSION_BUS_ADDRESS', "interface='org.freedesktop.Notifications'")
        kivo = Kivo(self.desktop, RULES)
        self.addCleanup(kivo.quit)

        # What is there at the start is listed at once and is not news.
        wait_for('the mouse in the list', lambda: self.listed() == {'MX Master': ('mouse', 42)}, 4)
        self.assertEqual(messages.notifications(), [])

        self.desktop.hardware('set', 'hidpp_battery_0', {'capacity': '11'})
        bluetooth.connect(HEADSET, 'WH-1000XM4', 80)
        began = time.monotonic()
        wait_for('both notifications', lambda: len(messages.notifications()) >= 2, POLL)
        told = {(title, body) for _, _, title, body in messages.notifications()}
        print(f'told after {time.monotonic() - began:.1f} s: {told}')
        self.assertEqual(told, {('MX Master', '11% left'), ('WH-1000XM4', '80% · connected')})
        # UPower and BlueZ both know the headset.
        self.assertEqual(self.listed(), {'MX Master': ('mouse', 11), 'WH-1000XM4': ('headphones', 80)})


if __name__ == '__main__':
    run()
