# SPDX-License-Identifier: MIT
"""A whole desktop without hardware, of real parts: two private buses, an X server, a compositor, upowerd and
power-profiles-daemon on emulated hardware, a notification service, a tray, a sound server with a null sink.

    with Desktop() as desktop: …

Everything a Desktop starts ends with it, and several run side by side. Run as a program it brings a desktop up,
runs a command in it (a shell by default) and takes it down again.
"""
import contextlib
import json
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
BACKGROUND = (0x33, 0x66, 0xcc)
TOOLS = ['Xvfb', 'dbus-daemon', 'dbus-monitor', 'dunst', 'dunstctl', 'gdbus', 'hsetroot', 'import', 'parec', 'picom',
         'pulseaudio', 'umockdev-wrapper', 'xdotool', 'xev', 'xfce4-panel', '/usr/libexec/upowerd',
         '/usr/libexec/power-profiles-daemon', '/usr/lib/x86_64-linux-gnu/xfce4/xfconf/xfconfd']


class Failure(AssertionError):
    """What was waited for did not come."""


def wait_for(what, condition, seconds=5.0, pause=0.02):
    """The condition's first true result; fails with `what` when there is none in time."""
    end = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise Failure(f'not within {seconds:g} s: {what}')
        time.sleep(pause)


class Picture:
    """A screenshot. Pixels are (red, green, blue)."""

    def __init__(self, width, height, data):
        self.width, self.height, self.data = width, height, data

    def at(self, x, y):
        start = (y * self.width + x) * 3
        return tuple(self.data[start:start + 3])

    def part(self, x, y, width, height):
        rows = [self.data[(row * self.width + x) * 3:(row * self.width + x + width) * 3]
                for row in range(y, y + height)]
        return Picture(width, height, b''.join(rows))

    def where(self, wanted):
        """The smallest box (x, y, width, height) of the pixels that `wanted` takes, and how many there are."""
        # Few colours fill most of a screen: each is judged once.
        judged, found = {}, []
        pixels = zip(*[iter(self.data)] * 3)
        for index, pixel in enumerate(pixels):
            good = judged.get(pixel)
            if good is None:
                good = judged[pixel] = wanted(pixel)
            if good:
                found.append(index)
        if not found:
            return None, 0
        columns = [index % self.width for index in found]
        left, right = min(columns), max(columns)
        top, bottom = found[0] // self.width, found[-1] // self.width
        return (left, top, right - left + 1, bottom - top + 1), len(found)


def near(color, tolerance=16):
    return lambda pixel: all(abs(a - b) <= tolerance for a, b in zip(pixel, color))


class Messages:
    """What a bus carries, as text blocks with the moment (CLOCK_MONOTONIC) each was seen."""

    def __init__(self, desktop, bus, match):
        self.seen = []
        ready = threading.Event()
        self.process = desktop.spawn('monitor', ['dbus-monitor', '--address', desktop.env[bus], match],
                                     stdout=subprocess.PIPE)
        threading.Thread(target=self._read, args=(ready,), daemon=True).start()
        if not ready.wait(5):
            raise Failure('dbus-monitor says nothing')

    def _read(self, ready):
        for line in self.process.stdout:
            text = line.decode('utf-8', 'replace').rstrip('\n')
            if text.startswith(' ') and self.seen:
                self.seen[-1][1].append(text.strip())
            else:
                # The monitor's own loss of its name is the sign that it listens.
                ready.set()
                self.seen.append((time.monotonic(), [text]))

    def notifications(self):
        """[(moment, replaced id, title, body)] of every Notify call."""
        result = []
        for moment, lines in list(self.seen):
            if 'method call' in lines[0] and 'member=Notify' in lines[0] and len(lines) > 5:
                strings = [line[8:-1] for line in lines[1:] if line.startswith('string "')]
                number = next(int(line.split()[1]) for line in lines if line.startswith('uint32 '))
                result.append((moment, number, strings[2], strings[3]))
        return result


class Listener:
    """Records the null sink, from the moment this is made, with a delay of some hundredths of a second."""

    def __init__(self, desktop):
        self.peaks = []
        self.process = desktop.spawn('parec', ['parec', '--latency-msec=20', '--device=kivo_null.monitor',
                                               '--format=s16le', '--rate=8000', '--channels=1', '--raw'],
                                     stdout=subprocess.PIPE)
        threading.Thread(target=self._read, daemon=True).start()
        # The sink works in steps of up to two seconds until the first listener asks for shorter ones.
        wait_for('samples of the null sink', lambda: self.peaks)

    def _read(self):
        while chunk := self.process.stdout.read1(4096):
            samples = memoryview(chunk[:len(chunk) // 2 * 2]).cast('h')
            self.peaks.append((time.monotonic(), max((abs(sample) for sample in samples), default=0) / 32768))

    def heard(self, since=0.0):
        """The moment of the first audible samples after `since`, or None."""
        return next((moment for moment, peak in self.peaks if moment >= since and peak > 0.01), None)

    def peak(self):
        return max((peak for _, peak in self.peaks), default=0)


class Desktop:
    """Choose: tray ('xfce4-panel' or None), compositor, upower, notifications, sound, screen size."""

    def __init__(self, tray='xfce4-panel', compositor=True, upower=True, notifications=True, sound=True,
                 screen='1280x800x24'):
        self.tray, self.compositor, self.upower = tray, compositor, upower
        self.notifications, self.sound, self.screen = notifications, sound, screen
        self.children = []

    def __enter__(self):
        lacking = [tool for tool in TOOLS if not shutil.which(tool)]
        if lacking:
            raise Failure(f'missing on this machine: {" ".join(lacking)}; scripts/setup desktop installs it')
        # Short: a unix socket's path has 107 bytes at most.
        self.folder = tempfile.mkdtemp(prefix='kv', dir='/tmp')
        try:
            self._start()
        except BaseException:
            self._print_logs()
            self.close()
            raise
        return self

    def __exit__(self, kind, *_):
        if kind and issubclass(kind, AssertionError):
            self._print_logs()
        self.close()

    # Processes

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def spawn(self, name, command, env=None, **how):
        """Starts a program in this desktop. Its output goes to log/NAME unless `how` says otherwise."""
        with open(self.path('log', name), 'ab') as log:
            how.setdefault('stdout', log)
            process = subprocess.Popen(command, env={**self.env, **(env or {})}, stdin=subprocess.DEVNULL,
                                       stderr=log, **how)
        self.children.append(process)
        return process

    def spawn_on_hardware(self, name, command, env=None):
        """The same for a program that shall find the emulated hardware in /sys."""
        return self.spawn(name, ['umockdev-wrapper', *command], env={'UMOCKDEV_DIR': self.hardware('dir'), **(env or {})})

    def end(self, process, how=signal.SIGTERM):
        """Ends a program and waits for it; gives its exit status."""
        if process.poll() is None:
            process.send_signal(how)
        try:
            return process.wait(3)
        except subprocess.TimeoutExpired:
            process.kill()
            return process.wait(3)

    def output(self, command):
        return subprocess.run(command, env=self.env, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=20, check=False).stdout.decode('utf-8', 'replace')

    def close(self):
        for process in reversed(self.children):
            if process.poll() is None:
                process.terminate()
        for process in self.children:
            self.end(process)
            if process.stdout:
                process.stdout.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    def log(self, name):
        with contextlib.suppress(FileNotFoundError), open(self.path('log', name), encoding='utf-8',
                                                          errors='replace') as file:
            return file.read()
        return ''

    def _print_logs(self):
        for name in sorted(os.listdir(self.path('log'))):
            text = self.log(name).strip()
            if text:
                print(f'--- log of {name}\n{text[-1500:]}', file=sys.stderr)

    # Bringing it up

    def _start(self):
        for name in ('log', 'home', 'run', 'upower'):
            os.makedirs(self.path(name), mode=0o700)
        self.env = {'PATH': '/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin', 'LANG': 'C.UTF-8',
                    'HOME': self.path('home'), 'XDG_CONFIG_HOME': self.path('home', 'config'),
                    'XDG_DATA_HOME': self.path('home', 'data'), 'XDG_CACHE_HOME': self.path('home', 'cache'),
                    'XDG_RUNTIME_DIR': self.path('run'), 'QT_QPA_PLATFORM': 'xcb', 'NO_AT_BRIDGE': '1',
                    # A sanitizer's runtime must not mind being loaded after umockdev's.
                    'ASAN_OPTIONS': 'verify_asan_link_order=0'}
        self._start_bus('DBUS_SYSTEM_BUS_ADDRESS')
        self._start_bus('DBUS_SESSION_BUS_ADDRESS')
        self._start_display()
        self._start_system_side()
        self._start_session_side()

    def _start_bus(self, variable):
        out, into = os.pipe()
        self.spawn(variable, ['dbus-daemon', f'--config-file={HERE}/bus.conf', '--nofork', f'--print-address={into}'],
                   pass_fds=[into])
        os.close(into)
        with os.fdopen(out) as address:
            self.env[variable] = address.readline().strip()

    def _start_display(self):
        out, into = os.pipe()
        self.display = self.spawn('Xvfb', ['Xvfb', '-displayfd', str(into), '-screen', '0', self.screen, '-nolisten', 'tcp',
                            '-noreset'], pass_fds=[into])
        os.close(into)
        with os.fdopen(out) as number:
            self.env['DISPLAY'] = ':' + number.readline().strip()

    def _start_system_side(self):
        mock = ['/usr/bin/python3', '-m', 'dbusmock', '--system', '-t']
        self.spawn('logind', mock + ['logind'])
        self.spawn('polkitd', mock + ['polkitd'])
        self.spawn('hardware', ['umockdev-wrapper', '/usr/bin/python3', f'{HERE}/hardware.py', self.path('hw')])
        self.wait_name('DBUS_SYSTEM_BUS_ADDRESS', 'org.freedesktop.login1')
        self.wait_name('DBUS_SYSTEM_BUS_ADDRESS', 'org.freedesktop.PolicyKit1')
        self.call('DBUS_SYSTEM_BUS_ADDRESS', 'org.freedesktop.PolicyKit1', '/org/freedesktop/PolicyKit1/Authority',
                  'org.freedesktop.DBus.Mock.AllowUnknown', 'true')
        wait_for('the emulated hardware', lambda: os.path.exists(self.path('hw')))
        self.hardware('laptop')
        self.spawn_on_hardware('power-profiles', ['/usr/libexec/power-profiles-daemon'])
        if self.upower:
            self.start_upower()
        self.wait_name('DBUS_SYSTEM_BUS_ADDRESS', 'net.hadess.PowerProfiles')

    def _start_session_side(self):
        background = '#%02x%02x%02x' % BACKGROUND
        self.output(['hsetroot', '-solid', background])
        if self.compositor:
            self.start_compositor()
        if self.notifications:
            self.start_notifications()
        if self.sound:
            self.env['PULSE_SERVER'] = 'unix:' + self.path('run', 'pulse.sock')
            self.spawn('pulseaudio', [
                'pulseaudio', '-n', '--daemonize=no', '--exit-idle-time=-1', '--use-pid-file=no',
                '-L', 'module-null-sink sink_name=kivo_null',
                '-L', f'module-native-protocol-unix socket={self.path("run", "pulse.sock")} auth-anonymous=1'])
            wait_for('the sound server', lambda: os.path.exists(self.path('run', 'pulse.sock')))
        if self.tray:
            self.start_tray()

    def start_compositor(self):
        self.picom = self.spawn('picom', ['picom', '--config', '/dev/null', '--backend', 'xrender'])

    def start_upower(self):
        self.upowerd = self.spawn_on_hardware('upowerd', ['/usr/libexec/upowerd', '-d'],
                                              env={'UPOWER_HISTORY_DIR': self.path('upower')})
        self.wait_name('DBUS_SYSTEM_BUS_ADDRESS', 'org.freedesktop.UPower')

    def start_notifications(self):
        self.dunst = self.spawn('dunst', ['dunst'])
        self.wait_name('DBUS_SESSION_BUS_ADDRESS', 'org.freedesktop.Notifications')

    def start_tray(self):
        channels = self.path('home', 'config', 'xfce4', 'xfconf', 'xfce-perchannel-xml')
        os.makedirs(channels, exist_ok=True)
        shutil.copy(f'{HERE}/xfce4-panel.xml', channels)
        self.spawn('xfconfd', ['/usr/lib/x86_64-linux-gnu/xfce4/xfconf/xfconfd'])
        self.wait_name('DBUS_SESSION_BUS_ADDRESS', 'org.xfce.Xfconf')
        self.panel = self.spawn('xfce4-panel', ['xfce4-panel', '--disable-wm-check'])
        self.wait_name('DBUS_SESSION_BUS_ADDRESS', 'org.kde.StatusNotifierWatcher')

    # What a test does with it

    def hardware(self, *command):
        with socket.socket(socket.AF_UNIX) as connection:
            connection.connect(self.path('hw'))
            stream = connection.makefile('rw')
            stream.write(json.dumps(command) + '\n')
            stream.flush()
            line = stream.readline()
        if not line:
            raise Failure(f'hardware {command}: the emulated hardware has ended')
        verdict, answer = json.loads(line)
        if verdict != 'ok':
            raise Failure(f'hardware {command}: {answer}')
        return answer

    def unplug(self):
        """Pulls the charger out; gives the moment."""
        moment = time.monotonic()
        self.hardware('set', 'AC', {'online': '0'})
        self.hardware('set', 'BAT0', {'status': 'Discharging'})
        return moment

    def plug_in(self):
        moment = time.monotonic()
        self.hardware('set', 'AC', {'online': '1'})
        self.hardware('set', 'BAT0', {'status': 'Charging'})
        return moment

    def call(self, bus, name, path, method, *arguments):
        """A method call's answer as gdbus prints it."""
        return self.output(['gdbus', 'call', '--address', self.env[bus], '-d', name, '-o', path, '-m', method, *arguments])

    def has_name(self, bus, name):
        return 'true' in self.call(bus, 'org.freedesktop.DBus', '/org/freedesktop/DBus',
                                   'org.freedesktop.DBus.NameHasOwner', name)

    def wait_name(self, bus, name, seconds=10):
        wait_for(f'{name} on the bus', lambda: self.has_name(bus, name), seconds)

    def screenshot(self):
        data = subprocess.run(['import', '-silent', '-window', 'root', '-depth', '8', 'rgb:-'], env=self.env,
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=20, check=True).stdout
        width, height = (int(number) for number in self.screen.split('x')[:2])
        return Picture(width, height, data)

    def keep_screenshot(self, path):
        self.output(['import', '-silent', '-window', 'root', path])


def main():
    with Desktop() as desktop:
        command = sys.argv[1:] or [os.environ.get('SHELL', '/bin/sh')]
        print(f'display {desktop.env["DISPLAY"]}, files in {desktop.folder}', file=sys.stderr)
        environment = {**desktop.env, 'PS1': 'desktop$ ', 'TERM': os.environ.get('TERM', 'dumb')}
        return subprocess.run(command, env=environment, check=False).returncode


if __name__ == '__main__':
    sys.exit(main())
