# SPDX-License-Identifier: MIT
"""Measures Kivo beside bare programs that do the least of the same job; see scripts/bench."""
import json
import math
import os
import statistics
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, 'tests', 'desktop'))

import dbus  # noqa: E402

from desktop import Desktop, wait_for  # noqa: E402

BUILD = os.path.abspath(sys.argv[1])
missed = 0


def binary(name):
    for folder in ('.', 'bench'):
        path = os.path.join(BUILD, folder, name)
        if os.access(path, os.X_OK):
            return path
    sys.exit(f'{name} is not built')


def report(what, kivo, floor, unit, most=None, absolute=None):
    """One row: the aim is at most `most` times the floor, or at most `absolute`."""
    global missed
    ratio = kivo / floor if floor else float('nan')
    aim, good = '', True
    if most is not None:
        aim, good = f'≤ {most:.2f}', ratio <= most
    elif absolute is not None:
        aim, good = f'≤ {absolute:g} {unit}', kivo <= absolute
    missed += not good
    floor_text = '' if floor is None else f'{floor:9.3f}'
    ratio_text = '' if floor is None else f'{ratio:6.2f}'
    print(f'{what:46} {kivo:9.3f} {floor_text:>9} {unit:5} {ratio_text:>6}  {aim:10} {"" if not aim else "ok" if good else "OVER"}',
          flush=True)


def write_settings(desktop, rules, **switches):
    folder = desktop.path('home', 'config', 'kivo')
    os.makedirs(folder, exist_ok=True)
    number = iter(range(1, 99))
    rules = [{'id': f'00000000-0000-4000-8000-{next(number):012d}', 'trigger': {name: {}}, 'isEnabled': True,
              'position': 'top', 'glowsScreen': False, 'sound': 'none', 'tint': 'auto', 'notifies': notifies}
             for name, notifies in rules]
    with open(os.path.join(folder, 'settings.json'), 'w', encoding='utf-8') as file:
        json.dump({'alertSettings.v2': {'rules': rules, **switches}, 'onboarding.completed.v1': True}, file)


class Process:
    """What the kernel counted for a process of ours."""

    def __init__(self, process):
        self.pid = process.pid

    def cpu(self):
        """CPU time in milliseconds: the kernel's clock of the whole process."""
        return time.clock_gettime_ns((~self.pid << 3) | 2) / 1e6

    def switches(self):
        """How often each of its threads was woken, by number."""
        found = {}
        for task in os.listdir(f'/proc/{self.pid}/task'):
            with open(f'/proc/{self.pid}/task/{task}/status', encoding='utf-8') as status:
                found[task] = sum(int(line.split()[1]) for line in status if line.startswith('voluntary'))
        return found

    def switches_since(self, before):
        """By threads that still live."""
        return sum(count - before.get(task, 0) for task, count in self.switches().items())

    def memory(self):
        with open(f'/proc/{self.pid}/smaps_rollup', encoding='utf-8') as rollup:
            rows = dict(line.split()[:2] for line in list(rollup)[1:])
        return int(rows['Rss:']) / 1024, int(rows['Anonymous:']) / 1024


class Probe:
    def __init__(self, desktop):
        self.process = subprocess.Popen([binary('bench-probe')], env=desktop.env, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True)
        self.name = self.process.stdout.readline().strip()

    def ask(self, *command):
        self.process.stdin.write(' '.join(map(str, command)) + '\n')
        self.process.stdin.flush()
        answer = self.process.stdout.readline().strip()
        if command[0] == 'frames':
            return [int(moment) for moment in answer.split()]
        return None if answer == 'none' else answer if answer == 'done' else int(answer) / 1e3

    def close(self):
        self.process.stdin.close()
        self.process.wait(5)
        self.process.stdout.close()


def settled(process):
    """Waits until a program has nothing more to do."""
    process = Process(process)
    last = -1.0
    end = time.monotonic() + 15
    while time.monotonic() < end:
        now = process.cpu()
        if now == last:
            return
        last = now
        time.sleep(0.4)


def decision(desktop, probe):
    write_settings(desktop, [('unplugged', True), ('pluggedIn', True)], showsOverlay=False)
    floor = desktop.spawn('floor', [binary('bench-slot'), probe.name])
    kivo = desktop.spawn('kivo', [binary('kivo')])
    settled(floor)
    settled(kivo)
    found = {'floor': [], 'laptop': []}
    for _ in range(200):
        for who, values in found.items():
            values.append(probe.ask('notify', who))
            time.sleep(0.02)
    desktop.end(floor)
    compare('signal to decision', found, 2)

    before = Process(kivo).switches()
    probe.ask('foreign', 1000)
    time.sleep(0.5)
    report('wake-ups by 1000 signals of others', Process(kivo).switches_since(before), None, '', absolute=4)
    desktop.end(kivo)


def presentation(desktop, probe):
    write_settings(desktop, [('unplugged', False), ('pluggedIn', False)], showsOverlay=True)
    floor = desktop.spawn('floor', [binary('bench-window'), probe.name])
    kivo = desktop.spawn('kivo', [binary('kivo')])
    settled(floor)
    settled(kivo)
    found = {'floor': [], 'laptop': []}
    for turn in range(18):
        floor_time = probe.ask('present', 'floor')
        time.sleep(0.2)
        probe.ask('flip', 'floor')  # hides it again
        time.sleep(0.2)
        island_time = probe.ask('present', 'laptop')
        time.sleep(4.2)  # the island leaves
        if turn >= 2:  # the first of each is no kept window
            found['floor'].append(floor_time)
            found['laptop'].append(island_time)
    desktop.end(floor)
    desktop.end(kivo)
    compare("signal to the island's first frame", found, 1.5)


def smoothness(desktop, probe):
    """Ten alerts at the screen's 60 Hz: frames that come late, and paintings while the island holds still."""
    kivo = desktop.spawn('kivo', [binary('kivo')])
    settled(kivo)
    probe.ask('present', 'laptop')
    time.sleep(4.2)
    dropped, drawn, paintings = 0, 0, []
    for turn in range(10):
        frames = probe.ask('frames', 'laptop')
        time.sleep(0.4)
        if not frames:
            sys.exit('bench: an alert without an island')
        growing = [moment for moment in frames if moment - frames[0] < 600_000]
        drawn += len(growing)
        dropped += sum(max(round((b - a) / 16_667) - 1, 0) for a, b in zip(growing, growing[1:]))
        paintings.append(sum(1_700_000 < moment - frames[0] < 2_900_000 for moment in frames))
    desktop.end(kivo)
    print(f'    {drawn} frames while ten islands grew')
    report('frames dropped in ten alerts at 60 Hz', dropped, None, '', absolute=0)
    # The ring of a charging computer's island goes on; every other alert is one of unplugging and holds still.
    report('paintings while five islands hold still', sum(sorted(paintings)[:5]), None, '', absolute=0)


def compare(what, found, most):
    for who, values in found.items():
        if None in values:
            sys.exit(f'bench: {what}: {values.count(None)} of {len(values)} turns of {who} without an outcome')
        values.sort()
        print(f'    {"Kivo" if who == "laptop" else "floor"}: min {values[0]:.0f}, p50 {statistics.median(values):.0f}, '
              f'p90 {values[len(values) * 9 // 10]:.0f} µs of {len(values)}')
    report(f'{what}, p50', statistics.median(found['laptop']), statistics.median(found['floor']), 'µs', most)


def latency():
    """From the bus signal to the decision (a notification is posted), and to the first painting of an island."""
    with Desktop(upower=False, notifications=False, sound=False) as desktop:
        probe = Probe(desktop)
        try:
            decision(desktop, probe)
            presentation(desktop, probe)
            smoothness(desktop, probe)
        finally:
            probe.close()


def frames():
    """A frame of an island in its first second beside a plain painting, and the memory after many islands."""
    found = {}
    for width, height in ((1920, 1080), (3840, 2160)):
        with Desktop(tray=None, compositor=False, upower=False, notifications=False, sound=False,
                     screen=f'{width}x{height}x24') as desktop:
            env = {**desktop.env, 'X_SERVER': str(desktop.display.pid)}

            def run(*words):
                rows = subprocess.run([binary('bench-frames'), *words], env=env, stdout=subprocess.PIPE, text=True,
                                      check=True).stdout.splitlines()
                return {name: float(value) for name, value in map(str.split, rows)}
            found[width] = run()
            if width == 1920:
                memory = run('memory')
    small, large = found[1920], found[3840]
    report('CPU of a frame, with the display server', small['island'], small['plain'], 'ms', 1.3)
    report('the same with the glow, beside without', small['glow'], small['island'], 'ms', 1.5)
    report('the same at 3840 x 2160, beside 1920 x 1080', large['island'], small['island'], 'ms', 1.15)
    report('with the glow at 3840 x 2160', large['glow'], small['glow'], 'ms')
    for count in (1, 20, 100):
        report(f'anonymous memory more after {count} islands', (memory[f'after{count}'] - memory['before']) / 1024, None,
               'MB', absolute=3)


def start():
    """CPU time until the tray icon is registered."""
    with Desktop(sound=False) as desktop:
        write_settings(desktop, [])
        spent = {'bench-tray': [], 'kivo': []}
        bus = dbus.bus.BusConnection(desktop.env['DBUS_SESSION_BUS_ADDRESS'])
        watcher = bus.get_object('org.kde.StatusNotifierWatcher', '/StatusNotifierWatcher', introspect=False)

        def items():
            return len(watcher.Get('org.kde.StatusNotifierWatcher', 'RegisteredStatusNotifierItems',
                                   dbus_interface=dbus.PROPERTIES_IFACE))
        for turn in range(11):
            for name, found in spent.items():
                wait_for('an empty tray', lambda: items() == 0)
                process = desktop.spawn(name, [binary(name)])
                wait_for(f'the icon of {name}', lambda: items() == 1, 10, 0.001)
                settled(process)
                if turn:
                    found.append(Process(process).cpu())
                desktop.end(process)
        report('CPU from start to rest, tray icon there', statistics.median(spent['kivo']),
               statistics.median(spent['bench-tray']), 'ms', 1.5)


def idle():
    """A minute at rest, and the memory of it."""
    with Desktop(upower=False, notifications=False, sound=False) as desktop:
        probe = Probe(desktop)
        try:
            write_settings(desktop, [])
            # Alone one after the other, so that neither shares its pages with the other's.
            rest = {}
            for name in ('bench-tray', 'kivo'):
                process = desktop.spawn(name, [binary(name)])
                settled(process)
                # The first half minute has its own work: looking for a tray, the first save of the history.
                time.sleep(70)
                seen = Process(process)
                switches, cpu = seen.switches(), seen.cpu()
                time.sleep(60)
                rest[name] = (*seen.memory(), seen.switches_since(switches), seen.cpu() - cpu)
                desktop.end(process)
        finally:
            probe.close()
    kivo, floor = rest['kivo'], rest['bench-tray']
    report('resident memory at rest', kivo[0], floor[0], 'MB', 1.15)
    report('anonymous memory at rest', kivo[1], floor[1], 'MB', absolute=5)
    report('wake-ups in a minute at rest', kivo[2], floor[2], '', absolute=3)
    report('CPU in a minute at rest', kivo[3], floor[3], 'ms', absolute=5)


def menu():
    """From a click on the tray icon to the painted menu, the first one of a process and later ones; what is left."""
    with Desktop(upower=False, notifications=False, sound=False) as desktop:
        write_settings(desktop, [])
        probe = Probe(desktop)
        cold, warm = [], []
        try:
            for _ in range(7):
                kivo = desktop.spawn('kivo', [binary('kivo')])
                item = f'org.kde.StatusNotifierItem-{kivo.pid}-1'
                desktop.wait_name('DBUS_SESSION_BUS_ADDRESS', item)
                settled(kivo)
                before = Process(kivo).memory()[1]
                cold.append(probe.ask('open', item) / 1e3)
                if len(cold) < 7:
                    desktop.end(kivo)
            for _ in range(20):
                time.sleep(0.2)
                probe.ask('click', item)
                time.sleep(0.2)
                warm.append(probe.ask('open', item) / 1e3)
            probe.ask('click', item)
            settled(kivo)
            time.sleep(5)
            rest = Process(kivo)
            after, switches = rest.memory()[1], rest.switches()
            time.sleep(30)
            woken = rest.switches_since(switches)
            desktop.end(kivo)
        finally:
            probe.close()
    report('click to painted menu, first of a process, p50', statistics.median(cold), None, 'ms', absolute=60)
    report('click to painted menu, later, p50', statistics.median(warm), None, 'ms', absolute=15)
    report('anonymous memory that 21 menus leave', after - before, None, 'MB', absolute=2)
    report('wake-ups in 30 s with the menu closed', woken, None, '', absolute=2)


def program(part):
    """A part that a program of its own measures; it prints rows like these."""
    global missed
    missed += subprocess.run([binary('bench-' + part)]).returncode != 0


def devices():
    """A refresh of the list of devices: no faster growth than n log n from 64 to 1,000 of them."""
    rows = subprocess.run([binary('bench-devices')], stdout=subprocess.PIPE, text=True, check=True).stdout.splitlines()
    found = {count: [value / 1000 for value in values] for count, *values in (map(int, row.split()) for row in rows)}
    for count, (changed, same, copied) in found.items():
        report(f'refresh of {count} devices that changed', changed, copied, 'µs')
        report(f'refresh of {count} devices that did not', same, copied, 'µs')
    growth = 1000 * math.log2(1000) / (64 * math.log2(64))
    report('1,000 devices beside n log n of 64', found[1000][0], found[64][0] * growth, 'µs', 1)


def main():
    parts = {'latency': latency, 'frames': frames, 'start': start, 'idle': idle, 'menu': menu, 'devices': devices,
             'ledger': lambda: program('ledger'), 'sampling': lambda: program('sampling')}
    wanted = sys.argv[2:] or list(parts)
    unknown = [name for name in wanted if name not in parts]
    if unknown:
        sys.exit(f'scripts/bench: there is no {unknown[0]} ({", ".join(parts)})')
    print(f'{"":46} {"Kivo":>9} {"floor":>9} {"":5} {"ratio":>6}  aim', flush=True)
    for name in wanted:
        parts[name]()
    return 1 if missed else 0


if __name__ == '__main__':
    sys.exit(main())
