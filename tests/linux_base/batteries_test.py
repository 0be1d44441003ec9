# SPDX-License-Identifier: MIT
"""kivo-batteries as a bar runs it: it follows the list whatever becomes of its folder."""
import json
import os
import select
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)


class FollowTest(unittest.TestCase):
    def setUp(self):
        self.home = self.enterContext(tempfile.TemporaryDirectory())
        self.folder = os.path.join(self.home, 'kivo')
        self.publish(60)
        self.process = subprocess.Popen([PROGRAM, '--follow'], stdout=subprocess.PIPE, bufsize=0,
                                        env={**os.environ, 'XDG_DATA_HOME': self.home})
        self.addCleanup(self.end)
        self.expect('60%')

    def end(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()

    def publish(self, level, folder=None):
        folder = folder or self.folder
        os.makedirs(folder, exist_ok=True)
        device = {'id': 'mac', 'name': 'Laptop', 'category': 'mac', 'level': level, 'isCharging': False, 'parts': []}
        with open(os.path.join(folder, 'new'), 'w', encoding='utf-8') as file:
            json.dump({'devices.v1': [device]}, file)
        os.replace(os.path.join(folder, 'new'), os.path.join(folder, 'widgets.json'))

    def expect(self, text):
        """The next line that is there."""
        while True:
            ready, _, _ = select.select([self.process.stdout], [], [], 5)
            self.assertTrue(ready, f'no line with {text}')
            line = self.process.stdout.readline().decode()
            self.assertTrue(line, 'it has ended')
            if text in line:
                return

    def test_a_folder_that_goes_and_comes_back(self):
        shutil.rmtree(self.folder)
        self.publish(50)
        self.expect('50%')
        os.rename(self.folder, self.folder + '-aside')
        self.publish(40)
        self.expect('40%')
        self.publish(30)
        self.expect('30%')

    def test_a_list_that_is_a_link(self):
        elsewhere = os.path.join(self.home, 'elsewhere')
        self.publish(50, elsewhere)
        file = os.path.join(self.folder, 'widgets.json')
        os.symlink(os.path.join(elsewhere, 'widgets.json'), file + '.link')
        os.replace(file + '.link', file)
        self.expect('50%')
        self.publish(40, elsewhere)
        self.expect('40%')


if __name__ == '__main__':
    unittest.main()
