# SPDX-License-Identifier: MIT
"""A Desktop whose display is a headless sway, with or without XWayland."""
import contextlib
import os
import pwd
import select
import shutil
import socket
import struct
import subprocess
import tempfile
import threading

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

    def move(self, x, y, width, height):
        """To a point of all screens together, which are so large."""
        self._send(5, 1, 0, x, y, width, height)
        self._send(5, 4)

    def click(self, *place):
        self.move(*place)
        for state in (1, 0):
            self._send(5, 2, 0, LEFT_BUTTON, state)
            self._send(5, 4)

    def close(self):
        self.socket.close()


class Relay:
    """Stands between the compositor and what is started from now on, until it is told to come in between."""

    def __init__(self, desktop):
        self.compositor = desktop.env['WAYLAND_DISPLAY']
        self.clients = []
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(desktop.path('relay'))
        self.listener.listen()
        desktop.env['WAYLAND_DISPLAY'] = desktop.path('relay')
        threading.Thread(target=self._accept, daemon=True).start()

    def _accept(self):
        with contextlib.suppress(OSError):
            while True:
                client, server = self.listener.accept()[0], socket.socket(socket.AF_UNIX)
                server.connect(self.compositor)
                threading.Thread(target=self._pass_on, args=(client, server), daemon=True).start()

    def _pass_on(self, client, server):
        with client, server, contextlib.suppress(OSError):
            while True:
                for source in select.select([client, server], [], [])[0]:
                    data, files, _, _ = socket.recv_fds(source, 1 << 16, 28)
                    if source is client and b'zwlr_layer_shell_v1' in data:
                        self.clients.append(client)
                    if not data:
                        return
                    target = server if source is client else client
                    sent = socket.send_fds(target, [data], files)
                    target.sendall(data[sent:])
                    for file in files:
                        os.close(file)

    def part(self, objection=None):
        """Ends the connections of those that draw on layers, on request with an error about one's registry."""
        for client in self.clients:
            with contextlib.suppress(OSError):
                if objection:
                    text = objection.encode() + b'\0'
                    text += bytes(-len(text) % 4)
                    client.sendall(struct.pack('=IIIII', 1, (20 + len(text)) << 16, 2, 7, len(objection) + 1) + text)
                client.shutdown(socket.SHUT_RDWR)
        self.clients.clear()

    def close(self):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()
        self.part()


WAYLAND_TOOLS = ['sway', 'swaymsg', 'grim', 'setpriv', 'xhost', 'Xwayland']


class WaylandDesktop(Desktop):
    """With `screens` they are WL-1 and WL-2, side by side, and can be pulled out. With `x11` there is an X server,
    too, that goes its own ways; its screen is the screenshot of no output."""

    def __init__(self, xwayland=False, scale='1', x11=False, screens=None):
        super().__init__(tray=None, compositor=False, notifications=False, sound=False)
        self.xwayland, self.scale, self.x11, self.screens = xwayland, scale, x11, screens

    def __enter__(self):
        lacking = [tool for tool in WAYLAND_TOOLS if not shutil.which(tool)]
        if lacking:
            raise Failure(f'missing on this machine: {" ".join(lacking)}; scripts/setup desktop installs it')
        return super().__enter__()

    def close(self):
        super().close()
        shutil.rmtree(self.sway_folder, ignore_errors=True)

    def _start_display(self):
        self.sway_folder = tempfile.mkdtemp(prefix='kw', dir='/tmp')
        if os.getuid() == 0:
            os.chown(self.sway_folder, pwd.getpwnam('nobody').pw_uid, -1)
        if self.x11:
            super()._start_display()
        del self.env['QT_QPA_PLATFORM']
        self.start_sway()
        if self.screens:
            self._start_inner_sway()

    def start_sway(self):
        self.sway = self._run_sway('sway', 'headless', f'output HEADLESS-1 resolution 1280x800 position 0 0 scale '
                                   f'{self.scale}\nfor_window [app_id=".*"] floating enable\n')

    def _start_inner_sway(self):
        # A headless output stays for good; one that is a window goes when the window is closed.
        self.outer_ipc = self.env['SWAYSOCK']
        self._run_sway('inner', 'wayland', ''.join(f'output WL-{number} {setting}\n'
                                                   for number, setting in enumerate(self.screens, 1)))

    def _run_sway(self, name, backend, lines):
        inside = lambda name: os.path.join(self.sway_folder, name)
        with contextlib.suppress(FileNotFoundError):
            os.remove(inside(name))
        xwayland = self.xwayland and (name == 'inner' or not self.screens)
        with open(inside('config'), 'w', encoding='utf-8') as config:
            config.write(f'xwayland {"enable" if xwayland else "disable"}\n{lines}'
                         f'output * bg #{"%02x%02x%02x" % BACKGROUND} solid_color\n'
                         'default_border none\nseat * hide_cursor 100\n'
                         f'exec sh -c "xhost +local: ; echo $WAYLAND_DISPLAY $DISPLAY > {inside(name)}"\n')
        # sway refuses to run as root; then nobody runs it, in a folder of nobody's.
        command = ['sway', '-c', inside('config')]
        if os.getuid() == 0:
            command = ['setpriv', '--reuid=nobody', '--regid=nogroup', '--clear-groups', *command]
        process = self.spawn(name, command, env={
            'XDG_RUNTIME_DIR': self.sway_folder, 'HOME': self.sway_folder, 'WLR_BACKENDS': backend,
            'WLR_WL_OUTPUTS': str(len(self.screens or ())), 'WLR_LIBINPUT_NO_DEVICES': '1', 'WLR_RENDERER': 'pixman'})
        wait_for(name, lambda: os.path.exists(inside(name)) and os.path.getsize(inside(name)), 20)
        with open(inside(name), encoding='utf-8') as file:
            wayland, *x11 = file.read().split()
        self.env.update(WAYLAND_DISPLAY=inside(wayland),
                        SWAYSOCK=next(inside(file) for file in os.listdir(self.sway_folder)
                                      if file.endswith(f'.{process.pid}.sock')))
        if xwayland:
            self.env['DISPLAY'] = x11[0]
        return process

    def pull_out(self, screen):
        self.output(['swaymsg', '-s', self.outer_ipc, f'[title=".*{screen}"]', 'kill'])

    def _start_session_side(self):
        if self.x11:
            super()._start_session_side()

    def sway_command(self, *words):
        return self.output(['swaymsg', *words])

    def screenshot(self, output='HEADLESS-1'):
        if output is None:
            return super().screenshot()
        data = subprocess.run(['grim', '-o', output, '-t', 'ppm', '-'], env=self.env, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=20, check=True).stdout
        _, size, _, pixels = data.split(b'\n', 3)
        width, height = (int(number) for number in size.split())
        return Picture(width, height, pixels)
