# SPDX-License-Identifier: MIT
"""What assistive technologies read of a program on this session:

    accessible.py tree NAME            a line for each thing that shows: role, name, states, actions, between tabs
    accessible.py do NAME THING ACTION
"""
import sys

import gi
gi.require_version('Atspi', '2.0')
from gi.repository import Atspi  # noqa: E402

STATES = {Atspi.StateType.CHECKED: 'checked', Atspi.StateType.FOCUSED: 'focused', Atspi.StateType.FOCUSABLE: 'focusable'}


def program(name):
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        child = desktop.get_child_at_index(index)
        if child and child.get_name() == name:
            return child
    sys.exit(0)  # nothing to read yet


def below(thing):
    yield thing
    for index in range(thing.get_child_count()):
        child = thing.get_child_at_index(index)
        if child:
            yield from below(child)


def actions(thing):
    action = thing.get_action_iface()
    return [Atspi.Action.get_action_name(action, index) for index in range(action.get_n_actions())] if action else []


def main():
    verb, name = sys.argv[1:3]
    for thing in below(program(name)):
        states = thing.get_state_set()
        if not states.contains(Atspi.StateType.SHOWING):
            continue
        if verb == 'tree':
            named = ' '.join(word for state, word in STATES.items() if states.contains(state))
            print('\t'.join([thing.get_role_name(), thing.get_name(), named, ', '.join(actions(thing))]))
        elif thing.get_name() == sys.argv[3] and sys.argv[4] in actions(thing):
            thing.get_action_iface().do_action(actions(thing).index(sys.argv[4]))
            return


main()
