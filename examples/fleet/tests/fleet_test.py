#!/usr/bin/env python3
"""Runs examples/fleet/site.yml with ansible-playbook against two stations on
this machine, each a scratch copy of examples/ with its own KORV_ROOT, and
checks what the rigcfg module reports against what happened to the files.

usage: fleet_test.py --rigcfg PATH [--source DIR]
"""

import argparse
import base64
import hashlib
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

HOSTS = ('contour-01', 'gear-01')
MACHINES = 'drive_c/ProgramData/Korv/KorSystemConfig/machines'
MIDSPAN = 'drive_c/ProgramData/Korv/Midspan Plugin'
KORECON = 'drive_c/ProgramData/Korv/KorECon'
LOG_DIR = 'drive_c/ProgramData/Korv/log'
RECAP = re.compile(r'^(\S+)\s+: ok=(\d+)\s+changed=(\d+)\s+unreachable=(\d+)\s+failed=(\d+)',
                   re.M)


class Check:
    def __init__(self):
        self.passed = 0
        self.failed = 0

    def case(self, name, problems):
        if problems:
            self.failed += 1
            print('FAIL %s' % name)
            for p in problems:
                print('     %s' % p)
        else:
            self.passed += 1
            print('ok   %s' % name)


def snapshot(root, with_logs=False):
    """Path -> sha256 of every file below root (the log folder left out unless asked)."""
    out = {}
    for folder, _, files in os.walk(root):
        for name in files:
            path = os.path.join(folder, name)
            rel = os.path.relpath(path, root)
            if not with_logs and rel.startswith(LOG_DIR + '/'):
                continue
            with open(path, 'rb') as f:
                out[rel] = hashlib.sha256(f.read()).hexdigest()
    return out


def changed_paths(before, after):
    return sorted(p for p in set(before) | set(after) if before.get(p) != after.get(p))


def read(root, rel):
    with open(os.path.join(root, rel), 'rb') as f:
        return f.read()


def stored_config(root, machine_file, variant):
    """The decoded text that a copy of this variant writes."""
    text = read(root, os.path.join(MACHINES, machine_file)).decode('latin-1')
    m = re.search(r'^\[%s\.configuration\]\r?\n(?:.*\n)*?config=(\S+)' % re.escape(variant),
                  text, re.M)
    return base64.b64decode(m.group(1))


def set_stored_config(root, machine_file, config):
    """Replaces every stored configuration of a machine file by config (text)."""
    path = os.path.join(root, MACHINES, machine_file)
    with open(path, 'rb') as f:
        text = f.read().decode('latin-1')
    text = re.sub(r'^config=\S*', lambda m: 'config=' + config, text, flags=re.M)
    with open(path, 'wb') as f:
        f.write(text.encode('latin-1'))


class Fleet:
    def __init__(self, work, source, rigcfg):
        self.work = work
        self.fleet = os.path.join(source, 'examples', 'fleet')
        self.roots = {}
        for host in HOSTS:
            root = os.path.join(work, host)
            shutil.copytree(os.path.join(source, 'examples'), root, symlinks=True,
                            ignore=shutil.ignore_patterns('fleet'))
            self.roots[host] = root
        playbook_bin = shutil.which('ansible-playbook')
        if not playbook_bin:
            raise SystemExit('ansible-playbook not found: scripts/setup installs ansible-core')
        self.playbook_bin = playbook_bin
        with open(playbook_bin) as f:
            shebang = f.readline()[2:].split()
        # The module runs under the interpreter that holds ansible itself.
        python = shebang[-1] if shebang and not shebang[0].endswith('env') else 'python3'
        lines = ['stations:', '  vars:', '    ansible_connection: local',
                 '    ansible_python_interpreter: %s' % python,
                 '    rigcfg_program: %s' % json.dumps(rigcfg), '  hosts:']
        for host in HOSTS:
            lines += ['    %s:' % host, '      korv_root: %s' % json.dumps(self.roots[host])]
        self.local_inventory = os.path.join(work, 'local.yml')
        with open(self.local_inventory, 'w') as f:
            f.write('\n'.join(lines) + '\n')
        self.tmp = os.path.join(work, 'tmp')
        os.makedirs(self.tmp)
        self.runs = 0

    def play(self, *args):
        """Runs site.yml; returns (exit code, output, recap, per-host results)."""
        self.runs += 1
        tree = os.path.join(self.work, 'tree%d' % self.runs)
        env = dict(os.environ)
        env.update({
            'ANSIBLE_CALLBACKS_ENABLED': 'tree',
            'ANSIBLE_CALLBACK_TREE_DIR': tree,
            'ANSIBLE_NOCOLOR': '1',
            'ANSIBLE_LOCAL_TEMP': os.path.join(self.work, 'ansible-local'),
            'ANSIBLE_REMOTE_TEMP': os.path.join(self.work, 'ansible-remote'),
            'ANSIBLE_RETRY_FILES_ENABLED': 'false',
            'TMPDIR': self.tmp,
        })
        cmd = [self.playbook_bin, '-i', os.path.join(self.fleet, 'inventory.yml'),
               '-i', self.local_inventory, os.path.join(self.fleet, 'site.yml')] + list(args)
        proc = subprocess.run(cmd, cwd=self.work, env=env, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=300)
        output = proc.stdout.decode('utf-8', 'replace')
        recap = {m.group(1): dict(ok=int(m.group(2)), changed=int(m.group(3)),
                                  unreachable=int(m.group(4)), failed=int(m.group(5)))
                 for m in RECAP.finditer(output)}
        results = {}
        for host in HOSTS:
            path = os.path.join(tree, host)
            if os.path.exists(path):
                with open(path) as f:
                    results[host] = json.load(f)
        return proc.returncode, output, recap, results


def recap_lines(output):
    return [m.group(0) for m in RECAP.finditer(output)]


def expect_recap(recap, host, changed, failed):
    got = recap.get(host)
    if got is None:
        return ['%s: no recap line' % host]
    problems = []
    if got['changed'] != changed or got['failed'] != failed:
        problems.append('%s: changed=%d failed=%d, expected changed=%d failed=%d'
                        % (host, got['changed'], got['failed'], changed, failed))
    return problems


def expect_reported_files(fleet, host, result, before, after):
    """The module's changed files are exactly the files that changed on disk."""
    root = fleet.roots[host]
    on_disk = changed_paths(before, after)
    reported = sorted(os.path.relpath(p, root) for p in result.get('changed_files', []))
    if on_disk != reported:
        return ['%s: changed on disk %s, reported %s' % (host, on_disk, reported)]
    return []


def clean_failure(output, result, host, expected):
    # The recap tells that it failed; the tree callback drops the flag.
    problems = []
    if result is None:
        return ['%s: no result' % host]
    msg = result.get('msg', '')
    if expected not in msg:
        problems.append('%s: message %r lacks %r' % (host, msg, expected))
    for word in ('Traceback', 'MODULE FAILURE', 'Exception'):
        if word in output:
            problems.append('%s: output holds %r' % (host, word))
    return problems


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--rigcfg', required=True)
    parser.add_argument('--source', default=os.path.abspath(
        os.path.join(os.path.dirname(__file__), '..', '..', '..')))
    opts = parser.parse_args()
    rigcfg = os.path.abspath(opts.rigcfg)
    check = Check()
    work = tempfile.mkdtemp(prefix='fleet-test-')
    started = time.monotonic()
    try:
        fleet = Fleet(work, opts.source, rigcfg)
        contour, gear = fleet.roots['contour-01'], fleet.roots['gear-01']
        pristine_korecon = read(gear, KORECON + '/korecon.ini')

        # First rollout: both stations get their configuration.
        before = {h: snapshot(fleet.roots[h]) for h in HOSTS}
        rc, out, recap, results = fleet.play('--diff')
        after = {h: snapshot(fleet.roots[h]) for h in HOSTS}
        print('\n'.join(recap_lines(out)))
        problems = [] if rc == 0 else ['ansible-playbook ended with %d\n%s' % (rc, out)]
        for host in HOSTS:
            problems += expect_recap(recap, host, changed=1, failed=0)
            problems += expect_reported_files(fleet, host, results.get(host, {}),
                                              before[host], after[host])
        check.case('first run changes both stations, and reports exactly the files it wrote',
                   problems)

        problems = []
        if read(contour, MIDSPAN + '/sp_load.ini') != stored_config(contour, 'VD_140.ini',
                                                                   '6140001'):
            problems.append('sp_load.ini is not the stored configuration of variant 6140001')
        if read(contour, MIDSPAN + '/SP_SUPPORT/load.ini') != (
                b'[1]\r\nProbeSystemName=\r\nProbeSystemSerialNo=\r\n[DriveUnit]\r\nIndex=1\r\n'):
            problems.append('load.ini was not reset')
        folder = b'C:\\Program Files\\korv\\korecon\\KorGear\\machines\\KMX 100\\9100100'
        expected = {
            'RigCfg.ini': b'[Configuration]\r\nkorctrl=korecon\r\nmachine=KMX 100\r\n'
                          b'order_no=9100100\r\nproduct_group=KORGEAR\r\nfolder=' + folder +
                          b'\r\nproxy=\r\n',
            'korecon.ini': b'[configuration]\r\ndynamic_path=' + folder +
                           b'\r\n[korecon_ioman]\r\nusb=0\r\n',
            'launcher.ini': b'[general]\r\nroot=ppc\r\n[korsim]\r\n3=visualisation\r\n',
            'mtmachineloader.ini': b'[MachineTree]\r\nroot=korecon\r\n',
        }
        for name, data in expected.items():
            got = read(gear, KORECON + '/' + name)
            if got != data:
                problems.append('%s holds %r' % (name, got))
        if '+active_section=DRIVEUNIT[VD 140:COM2],TABLE[manual]' not in out:
            problems.append('diff lacks the new active_section line')
        if '-root=PPC-A21' not in out or '+root=ppc' not in out:
            problems.append("diff lacks launcher.ini's root lines")
        check.case('the stations hold the expected bytes, and the diff shows the changed lines',
                   problems)

        # Second rollout: nothing to do.
        before = {h: snapshot(fleet.roots[h]) for h in HOSTS}
        rc, out, recap, results = fleet.play()
        print('\n'.join(recap_lines(out)))
        problems = [] if rc == 0 else ['ansible-playbook ended with %d' % rc]
        for host in HOSTS:
            problems += expect_recap(recap, host, changed=0, failed=0)
            if snapshot(fleet.roots[host]) != before[host]:
                problems.append('%s: files changed' % host)
            if results.get(host, {}).get('changed_files'):
                problems.append('%s: reports %s' % (host, results[host]['changed_files']))
        check.case('second run reports no change', problems)

        # Check mode on a changed machine file: predicted, nothing written.
        config = stored_config(contour, 'VD_140.ini', '6140001').replace(b'TABLE[manual]',
                                                                          b'TABLE[automatic]')
        set_stored_config(contour, 'VD_140.ini', base64.b64encode(config).decode())
        before = {h: snapshot(fleet.roots[h], with_logs=True) for h in HOSTS}
        rc, out, recap, results = fleet.play('--check', '--diff')
        problems = [] if rc == 0 else ['ansible-playbook ended with %d' % rc]
        problems += expect_recap(recap, 'contour-01', changed=1, failed=0)
        problems += expect_recap(recap, 'gear-01', changed=0, failed=0)
        for host in HOSTS:
            touched = changed_paths(before[host], snapshot(fleet.roots[host], with_logs=True))
            if touched:
                problems.append('%s: check mode wrote %s' % (host, touched))
        if '+active_section=DRIVEUNIT[VD 140:COM2],TABLE[automatic]' not in out:
            problems.append('diff lacks the predicted active_section line')
        if os.listdir(fleet.tmp):
            problems.append('scratch left behind: %s' % os.listdir(fleet.tmp))
        predicted = sorted(results.get('contour-01', {}).get('changed_files', []))
        check.case('check mode predicts the change of the edited machine file and writes nothing',
                   problems)

        # The prediction is what the real run then does.
        before = snapshot(contour)
        rc, out, recap, results = fleet.play()
        problems = expect_recap(recap, 'contour-01', changed=1, failed=0)
        problems += expect_recap(recap, 'gear-01', changed=0, failed=0)
        problems += expect_reported_files(fleet, 'contour-01', results.get('contour-01', {}),
                                          before, snapshot(contour))
        if sorted(results.get('contour-01', {}).get('changed_files', [])) != predicted:
            problems.append('check mode predicted %s' % predicted)
        if read(contour, MIDSPAN + '/sp_load.ini') != config:
            problems.append('sp_load.ini does not hold the edited configuration')
        check.case('the real run after check mode changes what was predicted', problems)

        # A broken machine file fails its station; the other station goes on.
        set_stored_config(contour, 'VD_140.ini', '!' + base64.b64encode(config).decode())
        with open(os.path.join(gear, KORECON, 'korecon.ini'), 'wb') as f:
            f.write(pristine_korecon)
        before = snapshot(contour)
        rc, out, recap, results = fleet.play()
        problems = [] if rc == 2 else ['ansible-playbook ended with %d, expected 2' % rc]
        problems += expect_recap(recap, 'contour-01', changed=0, failed=1)
        problems += expect_recap(recap, 'gear-01', changed=1, failed=0)
        problems += clean_failure(out, results.get('contour-01'), 'contour-01',
                                  'CopyConfig(): base64 decode failed')
        result = results.get('contour-01', {})
        if result.get('exit_code') != -1 or result.get('rc') != 255:
            problems.append('exit code %r rc %r' % (result.get('exit_code'), result.get('rc')))
        if snapshot(contour) != before:
            problems.append('the failed copy changed files')
        if read(gear, KORECON + '/korecon.ini') != expected['korecon.ini']:
            problems.append('gear-01 did not rewrite korecon.ini')
        check.case("a broken machine file fails its station with the error log's reason",
                   problems)

        # Bad input: a clear message, no traceback, and the program never waits.
        shutil.copy(os.path.join(opts.source, 'examples', MACHINES, 'VD_140.ini'),
                    os.path.join(contour, MACHINES, 'VD_140.ini'))
        for name, args, host, expected_msg in [
            ('a missing program', ['-e', 'rigcfg_program=/nonexistent/rigcfg'], 'gear-01',
             'rigcfg program /nonexistent/rigcfg not found'),
            ('a missing machine file', ['-e', 'rigcfg_file=VD_999.ini'], 'contour-01',
             'machine file VD_999.ini not found'),
            ('a variant that is not there', ['-e', 'rigcfg_variant=9999999'], 'gear-01',
             'variant 9999999 is not in machine file KMX_100_create.ini'),
            ('a machine file for the dialog', ['-e', 'rigcfg_file=KMX_100.ini'], 'gear-01',
             'has [configure] mode=new'),
            ('a machine file of the other course', ['-e', 'rigcfg_mode=create'], 'contour-01',
             'is a copy file, the task asks for create'),
        ]:
            before = snapshot(fleet.roots[host], with_logs=True)
            rc, out, recap, results = fleet.play('--limit', host, *args)
            problems = expect_recap(recap, host, changed=0, failed=1)
            problems += clean_failure(out, results.get(host), host, expected_msg)
            if 'exit_code' in results.get(host, {}):
                problems.append('the program ran')
            if snapshot(fleet.roots[host], with_logs=True) != before:
                problems.append('files changed')
            check.case('bad input fails cleanly: %s' % name, problems)

        # A machine file the program cannot read sends it to the dialog course,
        # which has no window here and ends at once.
        path = os.path.join(contour, MACHINES, 'VD_140.ini')
        with open(path, 'rb') as f:
            text = f.read()
        with open(path, 'wb') as f:
            f.write(text.replace(b'[connection]', b'[connection_gone]'))
        t0 = time.monotonic()
        rc, out, recap, results = fleet.play('--limit', 'contour-01')
        took = time.monotonic() - t0
        problems = expect_recap(recap, 'contour-01', changed=0, failed=1)
        problems += clean_failure(out, results.get('contour-01'), 'contour-01',
                                  'InitInstance(): failed to read file VD_140.ini')
        if results.get('contour-01', {}).get('exit_code') != -1:
            problems.append('exit code %r' % results.get('contour-01', {}).get('exit_code'))
        if took > 60:
            problems.append('took %.0f s' % took)
        check.case('an unreadable machine file ends without waiting for a person', problems)

        # Stations mix the case of folder and file names; so do macros.
        with open(path, 'wb') as f:
            f.write(text.replace(b'target=<AppData>\\Korv\\Midspan Plugin\\sp_load.ini',
                                 b'target=<APPDATA>\\KORV\\midspan plugin\\SP_Load.INI'))
        set_stored_config(contour, 'VD_140.ini', base64.b64encode(
            config.replace(b'TABLE[automatic]', b'TABLE[manual]')).decode())
        before = snapshot(contour)
        rc, out, recap, results = fleet.play('--limit', 'contour-01')
        problems = expect_recap(recap, 'contour-01', changed=1, failed=0)
        problems += expect_reported_files(fleet, 'contour-01', results.get('contour-01', {}),
                                          before, snapshot(contour))
        if b'TABLE[manual]' not in read(contour, MIDSPAN + '/sp_load.ini'):
            problems.append('sp_load.ini was not rewritten')
        check.case('a target written in another case is followed to the file', problems)
    finally:
        shutil.rmtree(work, ignore_errors=True)
    print('%d passed, %d failed (%.1f s)' % (check.passed, check.failed,
                                            time.monotonic() - started))
    return 1 if check.failed else 0


if __name__ == '__main__':
    sys.exit(main())
