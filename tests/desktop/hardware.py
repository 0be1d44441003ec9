#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Emulated power hardware: a umockdev testbed driven through a unix socket.

  umockdev-wrapper /usr/bin/python3 hardware.py SOCKET        serves until it is ended
Programs that run under umockdev-wrapper with UMOCKDEV_DIR (see `dir`) find this hardware in /sys and hear its
uevents. A line is a JSON list, a command and its arguments; so is each answer: ["ok", …] or ["error", …].

  ["add", SUBSYSTEM, NAME, {ATTRIBUTE: VALUE}]   ["laptop"]   ["dir"]
  ["mouse", PERCENT]   ["keyboard", PERCENT]   ["gamepad", PERCENT]   ["coarse", LEVEL]   (one that knows "Low")
  ["gust", NUMBER]      four accessories from gadget_battery_NUMBER on come, and four from two before that go; more
                        events than these and nobody who listens, and umockdev ends
  ["set", NAME, {ATTRIBUTE: VALUE}]     changes attributes and sends one `change` uevent
  ["quiet", NAME, {ATTRIBUTE: VALUE}]   the same without a uevent: what only a poll sees
  ["remove", NAME]
"""
import json
import os
import signal
import socket
import sys


class Hardware:
    def __init__(self):
        import gi
        gi.require_version('UMockdev', '1.0')
        from gi.repository import UMockdev
        with open('/proc/self/maps', encoding='utf-8') as maps:
            if 'libumockdev-preload' not in maps.read():
                sys.exit('hardware.py: run me under umockdev-wrapper')
        self.testbed = UMockdev.Testbed.new()
        self.paths = {}

    def create(self, subsystem, name, parent, attributes, properties):
        # The kernel ends every value with a newline, and upowerd relies on it for capacity_level.
        flat = [text for key, value in attributes.items() for text in (key, value + '\n')]
        path = self.testbed.add_device(subsystem, name, parent, flat,
                                       [text for pair in properties.items() for text in pair])
        if not path:
            raise RuntimeError(f'umockdev refuses {name}')
        self.paths[name] = path
        return path

    def add(self, subsystem, name, attributes):
        return self.create(subsystem, name, None, attributes, {})

    def laptop(self):
        self.add('power_supply', 'AC', {'type': 'Mains', 'online': '1'})
        return self.add('power_supply', 'BAT0', {
            'type': 'Battery', 'present': '1', 'status': 'Charging', 'technology': 'Li-ion', 'manufacturer': 'ACME',
            'model_name': 'X1', 'serial_number': '4711', 'energy_full': '50000000', 'energy_full_design': '60000000',
            'energy_now': '39500000', 'capacity': '79', 'power_now': '10000000', 'voltage_now': '12000000',
            'voltage_min_design': '11100000', 'cycle_count': '217', 'temp': '312', 'capacity_level': 'Normal'})

    def accessory(self, name, place, kind, supply, attributes):
        # upowerd finds the type by this shape: bluetooth device > hid > input, the power supply beside it.
        parent = self.create('bluetooth', f'hci0:{256 + place}', None, {}, {'DEVTYPE': 'link'})
        hid = self.create('hid', f'0005:046D:B012.{place:04}', parent, {}, {'HID_NAME': name})
        kinds = dict({f'ID_INPUT_{one}': '1' for one in kind}, ID_INPUT='1')
        device = self.create('input', f'input{place}', hid, {'name': name}, kinds)
        self.create('input', f'event{place}', device, {}, dict(kinds, DEVNAME=f'input/event{place}'))
        return self.create('power_supply', supply, hid, {
            'type': 'Battery', 'scope': 'Device', 'present': '1', 'online': '1', 'status': 'Discharging',
            'model_name': name, **attributes}, {})

    def mouse(self, percent):
        return self.accessory('MX Master', 7, ['MOUSE'], 'hidpp_battery_0', {
            'capacity': str(percent), 'manufacturer': 'Logitech', 'serial_number': '4082-aa-bb'})

    def keyboard(self, percent):
        return self.accessory('Magic Keyboard', 8, ['KEY', 'KEYBOARD'], 'hid-aa:bb:cc:dd:ee:01-battery', {
            'capacity': str(percent)})

    def gamepad(self, percent):
        return self.accessory('Wireless Controller', 9, ['JOYSTICK'], 'ps-controller-battery-aa:bb:cc:dd:ee:02', {
            'capacity': str(percent)})

    def coarse(self, level):
        return self.accessory('Old Mouse', 10, ['MOUSE'], 'hidpp_battery_1', {
            'capacity_level': level, 'serial_number': '101a'})

    def gust(self, first):
        for number in range(first, first + 4):
            name = f'gadget_battery_{number}'
            self.add('power_supply', name, {
                'type': 'Battery', 'scope': 'Device', 'present': '1', 'status': 'Discharging', 'online': '1',
                'model_name': f'Gadget {number}', 'serial_number': f'gadget-{number}', 'capacity': '50'})
            if number >= 2:
                self.remove(f'gadget_battery_{number - 2}')

    def quiet(self, name, attributes):
        for key, value in attributes.items():
            self.testbed.set_attribute(self.paths[name], key, value + '\n')

    def set(self, name, attributes):
        self.quiet(name, attributes)
        self.testbed.uevent(self.paths[name], 'change')

    def remove(self, name):
        self.testbed.uevent(self.paths[name], 'remove')
        self.testbed.remove_device(self.paths.pop(name))

    def dir(self):
        return self.testbed.get_root_dir()


COMMANDS = ('add', 'laptop', 'mouse', 'keyboard', 'gamepad', 'coarse', 'gust', 'set', 'quiet', 'remove', 'dir')


def serve(path):
    hardware = Hardware()

    def done(*_):
        os.unlink(path)
        del hardware.testbed  # takes its folder under /tmp along
        os._exit(0)
    signal.signal(signal.SIGTERM, done)
    server = socket.socket(socket.AF_UNIX)
    server.bind(path)
    server.listen(4)
    while True:
        stream = server.accept()[0].makefile('rw')
        for line in stream:
            try:
                command, *arguments = json.loads(line)
                if command not in COMMANDS:
                    raise ValueError('no such command')
                answer = ['ok', getattr(hardware, command)(*arguments)]
            except Exception as error:  # whatever it is, the client must hear of it
                answer = ['error', repr(error)]
            stream.write(json.dumps(answer) + '\n')
            stream.flush()


if __name__ == '__main__':
    serve(sys.argv[1])
