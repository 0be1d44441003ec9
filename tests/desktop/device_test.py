# SPDX-License-Identifier: MIT
"""Accessories by way of the real UPower and a mocked BlueZ, from the device to notification and widgets' list."""
import json
import time

import dbus

from desktop import Desktop, Failure, Messages, wait_for
from kivo import Kivo, KivoTest, rule, run, settings

RULES = settings(rule('deviceBelow', notifies=True, threshold=20), rule('deviceConnected', notifies=True),
                 playsSound=False)
POLL = 45  # seconds: the list is read every 30, and waits may be stretched by 5
HEADSET, EARBUDS, PHONE = '11:22:33:44:55:66', '11:22:33:44:55:77', '11:22:33:44:55:88'
EARBUDS_CLASS, PHONE_CLASS = 0x240418, 0x7a020c


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
        cls.bluetooth = Bluetooth(cls.desktop)
        cls.messages = Messages(cls.desktop, 'DBUS_SESSION_BUS_ADDRESS', "interface='org.freedesktop.Notifications'")

    def listed(self):
        """{name: (category, level)} of the widgets' list, without the computer."""
        try:
            with open(self.desktop.path('home', 'data', 'kivo', 'widgets.json'), encoding='utf-8') as file:
                devices = json.load(file)['devices.v1']
        except (FileNotFoundError, KeyError):
            return {}
        return {one['name']: (one['category'], one['level']) for one in devices if one['category'] != 'mac'}

    def await_list(self, expected, seconds=10):
        try:
            wait_for('the list', lambda: self.listed() == expected, seconds)
        except Failure:
            self.assertEqual(self.listed(), expected)

    def upower(self, method='EnumerateDevices'):
        return self.desktop.call('DBUS_SYSTEM_BUS_ADDRESS', 'org.freedesktop.UPower', '/org/freedesktop/UPower',
                                 'org.freedesktop.UPower.' + method)

    def published(self):
        return self.desktop.log('kivo').count('Published')

    def start(self):
        self.desktop.env['KIVO_LOG'] = 'debug'
        kivo = Kivo(self.desktop, RULES)
        self.addCleanup(kivo.quit)
        return kivo

    def test_accessories_from_connecting_to_running_low(self):
        hardware = self.desktop.hardware
        hardware('mouse', '42')
        hardware('keyboard', '63')
        hardware('gamepad', '55')
        hardware('coarse', 'Low')
        # Asleep, and unable to say.
        hardware('add', 'power_supply', 'asleep', {'type': 'Battery', 'scope': 'Device', 'present': '1',
                                                   'model_name': 'Asleep', 'capacity': '0', 'status': 'Unknown'})
        hardware('add', 'power_supply', 'unsure', {'type': 'Battery', 'scope': 'Device', 'present': '1',
                                                   'model_name': 'Unsure', 'capacity_level': 'Unknown'})
        self.bluetooth.connect(HEADSET, 'WH-1000XM4', 80)
        wait_for('the accessories in UPower', lambda: all(name in self.upower() for name in (
            'hidpp_battery_0', 'hid_aa', 'ps_controller', 'hidpp_battery_1', 'unsure', 'dev_11_22')), 20)
        kivo = self.start()

        # What is there at the start is listed at once and is not news, however low it is.
        there = {'Old Mouse': ('mouse', 10), 'MX Master': ('mouse', 42), 'Wireless Controller': ('gamepad', 55),
                 'Magic Keyboard': ('keyboard', 63), 'WH-1000XM4': ('headphones', 80)}
        self.await_list(there)
        self.assertEqual(self.messages.notifications(), [])

        # The mouse gets low, earbuds and a phone connect; the others stop telling anything, which is no news: UPower
        # stays with what two of them said last, and makes up 50% for the third.
        hardware('set', 'hidpp_battery_0', {'capacity': '19'})
        self.bluetooth.connect(EARBUDS, 'AirPods Pro', 60, EARBUDS_CLASS, 'audio-headphones')
        self.bluetooth.connect(PHONE, "Anna's phone", 15, PHONE_CLASS, 'phone')
        hardware('set', 'ps-controller-battery-aa:bb:cc:dd:ee:02', {'present': '0', 'capacity': '0'})
        hardware('set', 'hid-aa:bb:cc:dd:ee:01-battery', {'capacity': '0', 'status': 'Unknown'})
        hardware('set', 'hidpp_battery_1', {'capacity_level': 'Unknown'})
        began = time.monotonic()
        kivo.await_island(POLL)
        kivo.await_full_island()
        wait_for('the notifications', lambda: len(self.messages.notifications()) >= 3, 10)
        told = {(title, body) for _, _, title, body in self.messages.notifications()}
        print(f'told after {time.monotonic() - began:.1f} s: {told}')
        self.assertEqual(told, {('MX Master', '19% left'), ('AirPods Pro', '60% · connected'),
                                ("Anna's phone", '15% · connected')})
        # UPower and BlueZ both know the headset, the earbuds and the phone.
        rest = {'MX Master': ('mouse', 19), 'AirPods Pro': ('airpodsPro', 60), 'WH-1000XM4': ('headphones', 80),
                "Anna's phone": ('other', 15), 'Wireless Controller': ('gamepad', 55),
                'Magic Keyboard': ('keyboard', 63)}
        self.await_list(rest)

        # Two hundred accessories come and go: the list is right in the end and was published once.
        published = self.published()
        system = self.bluetooth.bus
        upower = system.get_object('org.freedesktop.UPower', '/org/freedesktop/UPower', introspect=False)
        profiles = system.get_object('net.hadess.PowerProfiles', '/net/hadess/PowerProfiles', introspect=False)

        def has_heard(last):
            names = ' '.join(upower.EnumerateDevices(dbus_interface='org.freedesktop.UPower'))
            return f'gadget_battery_{last}' in names and f'gadget_battery_{last - 2}' not in names
        began = time.monotonic()
        for number in range(0, 100, 4):
            hardware('gust', number)
            wait_for(f'accessory {number + 3} in UPower', lambda: has_heard(number + 3), 20, pause=0.002)
            for _ in range(8):  # each answer means that it has heard one event more
                profiles.Get('net.hadess.PowerProfiles', 'ActiveProfile', dbus_interface=dbus.PROPERTIES_IFACE)
        print(f'the storm took {time.monotonic() - began:.1f} s')
        gadgets = {f'Gadget {number}': ('other', 50) for number in (98, 99)}
        self.await_list({**rest, **gadgets}, POLL)
        polls = int((time.monotonic() - began) / 29) + 1
        self.assertLessEqual(self.published() - published, polls)
        self.assertIsNone(kivo.process.poll())
        late = {(title, body) for _, _, title, body in self.messages.notifications()} - told
        self.assertLessEqual(late, {(name, '50% · connected') for name in ('Gadget 98', 'Gadget 99')})


if __name__ == '__main__':
    run()
