# SPDX-License-Identifier: MIT
"""A Desktop whose display is a headless sway, with or without XWayland."""
import os
import pwd
import shutil
import socket
import struct
import subprocess
import tempfile

from desktop import BACKGROUND, Desktop, Failure, Picture, wait_for

LEFT_BUTTON = 0x110


class Pointer:
    """A mouse of the compositor's virtual kind, spoken to on the wire: a headless sway has none."""

    def __init__(self, desktop):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(10)
        self.socket.connect(desktop.env['WAYLAND_DISPLAY'])
        self._send(1, 1, 2)  # the display's registry is object 2
        self._send(1, 0, 3)  # a callback, 3, after all of its globals
        number = self._find_manager()
        name = b'zwlr_virtual_pointer_manager_v1\0'
        self._send(2, 0, number, len(name), name, 1, 4)
        self._send(4, 0, 0, 5)  # any seat's

    def _send(self, receiver, request, *arguments):
        data = b''.join(struct.pack('=I', argument) if isinstance(argument, int) else argument + bytes(-len(argument) % 4)
                        for argument in arguments)
        self.socket.sendall(struct.pack('=II', receiver, (8 + len(data)) << 16 | request) + data)

    def _find_manager(self):
        stream, found = self.socket.makefile('rb'), None
        while True:
            sender, word = struct.unpack('=II', stream.read(8))
            data = stream.read((word >> 16) - 8)
            if sender == 3:
                return found
            if sender == 2 and b'zwlr_virtual_pointer_manager_v1' in data:
                found = struct.unpack('=I', data[:4])[0]

    def click(self, x, y, width, height):
        """At a point of all screens together, which are so large."""
        self._send(5, 1, 0, x, y, width, height)
        for state in (1, 0):
            self._send(5, 2, 0, LEFT_BUTTON, state)
            self._send(5, 4)

    def close(self):
        self.socket.close()


WAYLAND_TOOLS = ['sway', 'swaymsg', 'grim', 'setpriv', 'xhost', 'Xwayland']


class WaylandDesktop(Desktop):
    def __init__(self, xwayland=False, scale='1'):
        super().__init__(tray=None, compositor=False, notifications=False, sound=False)
        self.xwayland, self.scale = xwayland, scale

    def __enter__(self):
        lacking = [tool for tool in WAYLAND_TOOLS if not shutil.which(tool)]
        if lacking:
            raise Failure(f'missing on this machine: {" ".join(lacking)}; scripts/setup desktop installs it')
        return super().__enter__()

    def close(self):
        super().close()
        shutil.rmtree(self.sway_folder, ignore_errors=True)

    def _start_display(self):
        # sway refuses to run as root; then nobody runs it, in a folder of nobody's.
        self.sway_folder = tempfile.mkdtemp(prefix='kw', dir='/tmp')
        inside = lambda name: os.path.join(self.sway_folder, name)
        with open(inside('config'), 'w', encoding='utf-8') as config:
            config.write(f'xwayland {"enable" if self.xwayland else "disable"}\n'
                         f'output HEADLESS-1 resolution 1280x800 position 0 0 scale {self.scale} '
                         f'bg #{"%02x%02x%02x" % BACKGROUND} solid_color\n'
                         'default_border none\n'
                         f'exec sh -c "xhost +local: ; echo $DISPLAY > {inside("display")}"\n')
        command = ['sway', '-c', inside('config')]
        if os.getuid() == 0:
            os.chown(self.sway_folder, pwd.getpwnam('nobody').pw_uid, -1)
            command = ['setpriv', '--reuid=nobody', '--regid=nogroup', '--clear-groups', *command]
        self.sway = self.spawn('sway', command, env={
            'XDG_RUNTIME_DIR': self.sway_folder, 'HOME': self.sway_folder, 'WLR_BACKENDS': 'headless',
            'WLR_LIBINPUT_NO_DEVICES': '1', 'WLR_RENDERER': 'pixman'})
        # An empty line without XWayland.
        wait_for('sway', lambda: os.path.exists(inside('display')) and os.path.getsize(inside('display')), 20)
        name = next(name for name in os.listdir(self.sway_folder)
                    if name.startswith('wayland-') and not name.endswith('.lock'))
        ipc = next(name for name in os.listdir(self.sway_folder) if name.startswith('sway-ipc'))
        del self.env['QT_QPA_PLATFORM']
        self.env.update(WAYLAND_DISPLAY=inside(name), SWAYSOCK=inside(ipc))
        if self.xwayland:
            with open(inside('display'), encoding='utf-8') as file:
                self.env['DISPLAY'] = file.read().strip()

    def _start_session_side(self):
        pass

    def sway_command(self, *words):
        return self.output(['swaymsg', *words])

    def screenshot(self, output='HEADLESS-1'):
        data = subprocess.run(['grim', '-o', output, '-t', 'ppm', '-'], env=self.env, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=20, check=True).stdout
        _, size, _, pixels = data.split(b'\n', 3)
        width, height = (int(number) for number in size.split())
        return Picture(width, height, pixels)
