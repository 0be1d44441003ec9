# SPDX-License-Identifier: MIT
"""An accessible application that no toolkit would make: fake_popups.py ADDRESS huge|cycle

huge: ten thousand elements, half of them in one list. cycle: every element is below every other one. Both with a
low-battery pop-up not far from the window. Prints "calls N" for what it was asked since the last such line,
whenever half a second passes without a question.
"""
import sys

import dbus
import dbus.lowlevel
import dbus.mainloop.glib
from gi.repository import GLib

ALERT, FILLER, FRAME, LABEL, BUTTON = 2, 20, 23, 29, 43
ROOT = '/org/a11y/atspi/accessible/root'


class Element:
    def __init__(self, role=FILLER, name='', children=(), actions=()):
        self.role, self.name, self.children, self.actions = role, name, list(children), list(actions)


def pop_up(elements):
    elements['/popup'] = Element(ALERT, 'Power', ['/text', '/close'])
    elements['/text'] = Element(LABEL, 'Low battery')
    elements['/close'] = Element(BUTTON, 'Close', [], ['press'])


def huge():
    elements = {ROOT: Element(children=['/window']), '/window': Element(FRAME, 'Shell', ['/list', '/grid', '/box'])}
    elements['/list'] = Element(children=[f'/item{i}' for i in range(5000)])
    elements.update((f'/item{i}', Element(LABEL, f'Item {i}')) for i in range(5000))
    elements['/grid'] = Element(children=[f'/row{i}' for i in range(70)])
    for i in range(70):
        elements[f'/row{i}'] = Element(children=[f'/cell{i}_{k}' for k in range(70)])
        elements.update((f'/cell{i}_{k}', Element(BUTTON, f'Cell {k}', [], ['press'])) for k in range(70))
    elements['/box'] = Element(children=['/popup'])
    pop_up(elements)
    return elements


def cycle():
    everybody = [f'/n{i}' for i in range(60)]
    elements = {path: Element(children=everybody + ['/window', ROOT]) for path in everybody}
    elements[ROOT] = Element(children=['/window'])
    elements['/window'] = Element(FRAME, 'Shell', ['/n0', '/n1', '/n2'])
    elements['/n2'].children.insert(0, '/popup')
    pop_up(elements)
    return elements


class Application:
    def __init__(self, bus, elements):
        self.bus, self.elements, self.calls, self.idle = bus, elements, 0, None
        self.own_name = bus.get_unique_name()
        bus.add_message_filter(self.handle)

    def handle(self, _, message):
        if message.get_type() != 1:
            return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
        self.calls += 1
        if self.idle:
            GLib.source_remove(self.idle)
        self.idle = GLib.timeout_add(500, self.report)
        element = self.elements.get(message.get_path())
        answer = self.answer(element, message) if element else None
        if answer is None:
            reply = dbus.lowlevel.ErrorMessage(message, 'org.freedesktop.DBus.Error.UnknownMethod', 'no')
        else:
            reply = dbus.lowlevel.MethodReturnMessage(message)
            reply.append(answer[1], signature=answer[0])
        self.bus.send_message(reply)
        return dbus.lowlevel.HANDLER_RESULT_HANDLED

    def report(self):
        print('calls', self.calls, flush=True)
        self.calls, self.idle = 0, None
        return False

    def answer(self, element, message):
        member = message.get_member()
        if member == 'GetChildren':
            return 'a(so)', [(self.own_name, path) for path in element.children]
        if member == 'GetState':
            return 'au', [1 << 25, 0]
        if member == 'GetRole':
            return 'u', element.role
        if member == 'GetActions':
            return 'a(sss)', [(name, '', '') for name in element.actions]
        if member == 'GetAttributes':
            return 'a{ss}', {}
        if member == 'Get':
            return 'v', dbus.String(element.name if message.get_args_list()[1] == 'Name' else '', variant_level=1)
        if member == 'DoAction':
            print('closed', message.get_path(), flush=True)
            for other in self.elements.values():
                other.children = [child for child in other.children if child != '/popup']
            return 'b', True
        return None


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
connection = dbus.bus.BusConnection(sys.argv[1])
application = Application(connection, {'huge': huge, 'cycle': cycle}[sys.argv[2]]())
registry = connection.get_object('org.a11y.atspi.Registry', ROOT, introspect=False)
registry.Embed((connection.get_unique_name(), dbus.ObjectPath(ROOT)), dbus_interface='org.a11y.atspi.Socket')
print('shown', flush=True)
GLib.MainLoop().run()
