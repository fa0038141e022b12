#!/usr/bin/python
# -*- coding: utf-8 -*-
# Runs rigcfg's silent copy or create on a measuring station and reports
# "changed" only when a file of the installation got different bytes.

from __future__ import absolute_import, division, print_function

__metaclass__ = type

DOCUMENTATION = r'''
---
module: rigcfg
short_description: Configure a measuring station from a machine description file
description:
  - Runs the silent copy or create course of C(rigcfg) with a machine
    description file of the station's machines folder, and maps the exit code
    to a result.
  - The program runs without a display and without a dialog script, so a run
    that would need a person ends at once.
  - I(changed) is true only when a file that the course can write now holds
    different bytes. Those files are known from the machine file (the copy
    target) and the product's data folder.
  - Check mode runs the program on a scratch copy of C(KORV_ROOT) and reports
    what the real run would change; the station's files stay untouched.
  - Diff mode shows the ini lines that change.
options:
  mode:
    description: The course the machine file must select; the run is refused when its [configure] mode differs.
    type: str
    required: true
    choices: [copy, create]
  file:
    description: Machine description file (C(.ini) or C(.alias)), a name in the machines folder.
    type: str
    required: true
  variant:
    description: Variant of the machine file; it must be one the file lists.
    type: str
    required: true
  control:
    description:
      - Control family, C(midspan), C(korecon) or C(mtmillikor), in any case.
      - Without it the program's own product name decides.
    type: str
  proxy:
    description: Proxy name for a create.
    type: str
  alias_machine_name:
    description: Machine name written instead of the file's, for a create.
    type: str
  alias_variant:
    description: Order number written instead of the variant, for a create.
    type: str
  program:
    description: Path of the rigcfg program, or a name looked up in PATH.
    type: str
    default: rigcfg
  korv_root:
    description: The folder standing for the Windows drives (C(KORV_ROOT)).
    type: path
    default: /var/lib/korv
  log_dir:
    description:
      - Folder of trace.log and error.log (C(KORV_LOG_DIR)).
      - Default is the program's own, the C(Korv\log) folder of the common data folder.
    type: path
  timeout:
    description: Seconds after which a run that has not ended is killed and reported as failed.
    type: int
    default: 120
notes:
  - C(KORV_CONFIGPATH), C(DISPLAY), C(WAYLAND_DISPLAY), C(QT_QPA_PLATFORM),
    C(KORV_UI_SCRIPT) and C(KORV_UI_TRANSCRIPT) are removed from the program's environment.
'''

EXAMPLES = r'''
- name: Store the contour station's configuration
  rigcfg:
    mode: copy
    file: VD_140.ini
    variant: "6140001"
    korv_root: /var/lib/korv

- name: Create the gear station's configuration for the KorECon control
  rigcfg:
    mode: create
    file: KMX_100_create.ini
    variant: "9100100"
    control: korecon
'''

RETURN = r'''
rc:
  description: Exit status as the system reports it (-1 is 255, -5 is 251).
  type: int
  returned: when the program ran
exit_code:
  description: The program's own exit code (255 read as -1, 251 as -5).
  type: int
  returned: when the program ran
meaning:
  description: The exit code in words.
  type: str
  returned: when the program ran
product:
  description: The product whose data folder the run writes.
  type: str
  returned: always
files:
  description: The files the course can write, with their hashes before and after.
  type: list
  returned: always
changed_files:
  description: Paths of the files whose bytes changed (or would change, in check mode).
  type: list
  returned: always
error_log:
  description: The error log lines written by this run, the last ten.
  type: list
  returned: when the program ran
'''

import hashlib
import os
import shutil
import signal
import subprocess
import tempfile

from ansible.module_utils.basic import AnsibleModule
from ansible.module_utils.common.text.converters import to_native

PRODUCTS = {
    'midspan': 'Midspan Plugin',
    'korecon': 'KorECon',
    'mtmillikor': 'MTMillikor',
}

COMMON_DATA = 'C:\\ProgramData'
PROGRAM_FILES = 'C:\\Program Files'
PROGRAM_FILES_X86 = 'C:\\Program Files (x86)'
COMMON_FILES_X86 = 'C:\\Program Files (x86)\\Common Files'
MACHINES_FOLDER = COMMON_DATA + '\\Korv\\KorSystemConfig\\machines'

# What each course can write in the product's data folder.
COPY_FILES = ['SP_SUPPORT\\load.ini']
CREATE_FILES = [
    'form_load.ini', 'RigCfg.ini', 'korecon.ini', 'launcher.ini',
    'mtmachineloader.ini', 'm2kortalk.ini', 'm2kortalk_cnctable.ini',
    'm2kortalk_cnctable\\m2kortalk.ini', 'camera\\qidcamera.ini',
]

# Variables that would let a dialog wait for a person, or move the data folder.
DROPPED_ENV = ['DISPLAY', 'WAYLAND_DISPLAY', 'QT_QPA_PLATFORM', 'KORV_UI_SCRIPT',
               'KORV_UI_TRANSCRIPT', 'KORV_CONFIGPATH']

MEANINGS = {
    0: 'copy or create succeeded',
    1: 'the machine file opened the dialog course, which saved a new configuration',
    2: 'the machine file opened the dialog course, which was cancelled',
    -1: 'the copy or create failed, or the run fell back to the dialog course, '
        'which cannot be shown here',
    -5: 'the working folder does not exist',
}

# Files bigger than this are linked, not copied, into a check run's scratch
# tree: the courses write small ini files only, and those are always copied.
SCRATCH_COPY_LIMIT = 1024 * 1024

ERROR_LOG_LINES = 10


class RigcfgError(Exception):
    pass


def native_path(root, path, cwd='.'):
    """The host path of a Windows path, as the program's file layer maps it."""
    parts = [p for p in path.replace('/', '\\').split('\\') if p]
    if len(path) >= 2 and path[1] == ':' and path[0].isalpha():
        base = os.path.join(root.rstrip('/') or '/', 'drive_' + path[0].lower())
        parts = [p for p in path[2:].replace('/', '\\').split('\\') if p]
    elif path[:1] in ('\\', '/'):
        base = '/'
    else:
        base = cwd
    current = base
    folder_exists = os.path.isdir(base)
    for part in parts:
        candidate = os.path.join(current, part)
        if folder_exists and not os.path.lexists(candidate) and part not in ('.', '..'):
            lower = part.lower()
            try:
                matches = sorted(e for e in os.listdir(current) if e.lower() == lower)
            except OSError:
                matches = []
            if matches:
                candidate = os.path.join(current, matches[0])
            else:
                folder_exists = False
        current = candidate
    return os.path.normpath(current)


def read_registry_value(root, key, name):
    """A string value from the registry file, or None."""
    path = os.path.join(root, 'registry.reg')
    try:
        with open(path, 'rb') as f:
            data = f.read()
    except OSError:
        return None
    if data.startswith(b'\xff\xfe'):
        text = data[2:].decode('utf-16-le', 'replace')
    else:
        text = data.decode('latin-1')
    wanted_key = key.lower()
    wanted_name = '"%s"=' % name.lower()
    in_key = False
    for line in text.splitlines():
        line = line.strip()
        if line.startswith('['):
            in_key = line[1:line.find(']')].lower() == wanted_key
        elif in_key and line.lower().startswith(wanted_name):
            value = line[len(wanted_name):]
            if not value.startswith('"'):
                return None  # not a plain string value
            out, i = [], 1
            while i < len(value) and value[i] != '"':
                if value[i] == '\\' and i + 1 < len(value):
                    i += 1
                out.append(value[i])
                i += 1
            return ''.join(out)
    return None


def expand(text, root):
    """The path macros, replaced in the program's order, ignoring case."""
    target_dir = read_registry_value(root, 'HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\KorWin\\Main',
                                     'TargetDir')
    user_data = read_registry_value(root, 'HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\Hub32\\volatile',
                                    'UserData')
    korwin = target_dir if target_dir else PROGRAM_FILES + '\\korv\\korwin'
    table = [
        ('<korecon>', PROGRAM_FILES + '\\korv\\korecon'),
        ('<powerpcctrl>', PROGRAM_FILES_X86 + '\\korv\\powerpcctrl'),
        ('<midspan>', PROGRAM_FILES_X86 + '\\korv\\midspan plugin'),
        ('<korctrltools>', PROGRAM_FILES + '\\korv\\korctrltools'),
        ('<mtsurf>', PROGRAM_FILES_X86 + '\\korv\\mtsurf'),
        ('<mtmillikor>', PROGRAM_FILES_X86 + '\\korv\\mtmillikor'),
        ('<appdata>', COMMON_DATA),
        ('<hub32>', COMMON_FILES_X86 + '\\korv\\hub32'),
        ('<korwin>', korwin),
        ('<product_infos>', korwin + '\\product_infos'),
        ('$(program_files)', PROGRAM_FILES),
        ('$(program_files_x86)', PROGRAM_FILES_X86),
        ('<korwin_userdata>', user_data if user_data else 'c:\\korv'),
    ]
    for macro, value in table:
        # Positions come from the text as it was before this macro's turn,
        # as in the program, so a second occurrence lands where it does there.
        lowered = text.lower()
        at = lowered.find(macro)
        while 0 <= at <= len(text):
            text = text[:at] + value + text[at + len(macro):]
            at = lowered.find(macro, at + max(len(value), 1))
    return text


def parse_ini(path):
    """Sections of an ini file as the program reads them: names exact, values untrimmed."""
    try:
        with open(path, 'rb') as f:
            text = f.read().decode('latin-1')
    except OSError as e:
        raise RigcfgError('cannot read %s: %s' % (path, e.strerror))
    sections = {}
    current = None
    for number, line in enumerate(text.splitlines(), 1):
        stripped = line.strip(' \t')
        if not stripped:
            continue
        if line.startswith('['):
            end = line.find(']')
            if end < 0:
                raise RigcfgError('%s line %d: section header without "]"' % (path, number))
            current = sections.setdefault(line[1:end], {})
        elif stripped[0] in '#*/;':
            continue
        elif current is None or '=' not in stripped or stripped.startswith('='):
            raise RigcfgError('%s line %d is no ini line: %s' % (path, number, line))
        else:
            name, value = line.split('=', 1)
            current.setdefault(name.strip(' \t'), value)
    return sections


def read_list(value):
    """A list value of a machine file: comments cut, blanks dropped, "_" a blank."""
    for marker in ('//', '/*', ';'):
        if marker in value:
            value = value[:value.find(marker)]
    value = ''.join(value.split()).replace('_', ' ')
    return [item for item in value.split(',') if item]


def read_machine_file(root, name):
    """What the module needs of a machine description file or an alias file."""
    folder = native_path(root, MACHINES_FOLDER)
    path = native_path(root, MACHINES_FOLDER + '\\' + name)
    if not os.path.isfile(path):
        raise RigcfgError('machine file %s not found in %s' % (name, folder))
    machine = {'path': path}
    if len(name) > 5 and '.alias' in name:
        alias = parse_ini(path)
        general = alias.get('General', {})
        if 'file' not in general:
            raise RigcfgError('alias file %s has no [General] file=' % name)
        data_name = general['file'].split(';')[0].strip()
        data_path = native_path(root, MACHINES_FOLDER + '\\' + data_name)
        if not os.path.isfile(data_path):
            raise RigcfgError('alias file %s names machine file %s, which is not in %s'
                              % (name, data_name, folder))
        data = parse_ini(data_path)
        variants = [''.join(s['parent_identno'].split(';')[0].split())
                    for n, s in sorted(alias.items())
                    if len(n) >= 13 and 'AliasIdentNo_' in n and 'parent_identno' in s]
    else:
        data = parse_ini(path)
        variants = read_list(data.get('general', {}).get('variants', ''))
    general = data.get('general', {})
    machine.update({
        'mode': data.get('configure', {}).get('mode', ''),
        'variants': variants,
        'variantfolder': general.get('variantfolder', ''),
        'sections': data,
    })
    return machine


def copy_target(machine, variant):
    """The stored configuration's target: the variant's own, else [configuration]'s."""
    sections = machine['sections']
    own = sections.get(variant + '.configuration', {})
    if 'target' in own:
        return own['target']
    return sections.get('configuration', {}).get('target', '')


def product_of(program, control):
    if control:
        return PRODUCTS[control]
    # The version table decides, as it does for the program.
    try:
        out = subprocess.run([program, '--version'], stdin=subprocess.DEVNULL,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                             timeout=30).stdout
    except (OSError, subprocess.TimeoutExpired) as e:
        raise RigcfgError('cannot ask %s for its product name: %s' % (program, to_native(e)))
    name = to_native(out).strip().rsplit(' ', 1)[0]
    return 'KorECon' if name == 'KorECon' else 'Midspan Plugin'


def written_files(root, machine, params, product):
    """Host paths, relative to root where they lie below it, that the course can write."""
    app_folder = COMMON_DATA + '\\Korv\\' + product
    if params['mode'] == 'copy':
        target = expand(copy_target(machine, params['variant']), root)
        names = [target] + [app_folder + '\\' + f for f in COPY_FILES]
    else:
        names = [app_folder + '\\' + f for f in CREATE_FILES]
    paths = []
    for name in names:
        if not name:
            continue
        # The program runs in root, so a relative target lies below it.
        path = os.path.normpath(native_path(root, name, cwd=root))
        if path not in paths:
            paths.append(path)
    return paths


def read_bytes(path):
    try:
        with open(path, 'rb') as f:
            return f.read()
    except FileNotFoundError:
        return None


def scratch_copy(root, scratch_root, keep_out, must_copy):
    """root copied to scratch_root; big files linked, keep_out left out."""
    for folder, dirs, files in os.walk(root):
        rel = os.path.relpath(folder, root)
        dest = os.path.normpath(os.path.join(scratch_root, rel))
        dirs[:] = [d for d in dirs
                   if os.path.normpath(os.path.join(folder, d)) not in keep_out]
        os.makedirs(dest, exist_ok=True)
        for d in list(dirs):
            src = os.path.join(folder, d)
            if os.path.islink(src):
                os.symlink(os.readlink(src), os.path.join(dest, d))
                dirs.remove(d)
        for name in files:
            src = os.path.join(folder, name)
            dst = os.path.join(dest, name)
            if os.path.islink(src):
                os.symlink(os.readlink(src), dst)
            elif (os.path.getsize(src) > SCRATCH_COPY_LIMIT
                  and os.path.normpath(src) not in must_copy):
                os.symlink(src, dst)
            else:
                shutil.copy2(src, dst)


def new_log_lines(path, offset, pid):
    """The error log lines of process pid written behind offset."""
    try:
        with open(path, 'rb') as f:
            f.seek(offset)
            text = f.read().decode('latin-1')
    except OSError:
        return []
    mark = '[%d] ' % pid
    lines = [line for line in text.splitlines() if mark in line]
    return lines[-ERROR_LOG_LINES:]


def reason_of(line):
    """The text of an error log line, without stamp, process and location."""
    at = line.find('): ')
    return line[at + 3:] if at >= 0 else line


def run_program(program, args, root, log_dir, timeout):
    env = dict(os.environ)
    for name in DROPPED_ENV:
        env.pop(name, None)
    env['KORV_ROOT'] = root
    env['KORV_LOG_DIR'] = log_dir
    error_log = os.path.join(log_dir, 'error.log')
    try:
        offset = os.path.getsize(error_log)
    except OSError:
        offset = 0
    try:
        proc = subprocess.Popen([program] + args, env=env, cwd=root,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, start_new_session=True)
    except OSError as e:
        raise RigcfgError('cannot start %s: %s' % (program, e.strerror))
    try:
        out, err = proc.communicate(timeout=timeout)
    except subprocess.TimeoutExpired:
        os.killpg(proc.pid, signal.SIGKILL)
        proc.communicate()
        raise RigcfgError('%s did not end within %d seconds and was killed'
                          % (program, timeout))
    return {
        'rc': proc.returncode,
        'stdout': to_native(out, errors='surrogate_or_replace'),
        'stderr': to_native(err, errors='surrogate_or_replace'),
        'error_log': new_log_lines(error_log, offset, proc.pid),
    }


def text_of(data):
    if data is None:
        return ''
    return data.decode('latin-1').replace('\r\n', '\n').replace('\r', '\n')


def main():
    module = AnsibleModule(
        argument_spec=dict(
            mode=dict(type='str', required=True, choices=['copy', 'create']),
            file=dict(type='str', required=True),
            variant=dict(type='str', required=True),
            control=dict(type='str'),
            proxy=dict(type='str'),
            alias_machine_name=dict(type='str'),
            alias_variant=dict(type='str'),
            program=dict(type='str', default='rigcfg'),
            korv_root=dict(type='path', default='/var/lib/korv'),
            log_dir=dict(type='path'),
            timeout=dict(type='int', default=120),
        ),
        supports_check_mode=True,
    )
    p = module.params
    result = dict(changed=False, files=[], changed_files=[])

    def fail(msg, **extra):
        result.update(extra)
        module.fail_json(msg=msg, **result)

    if p['control']:
        # The program folds the family to lower case before comparing.
        p['control'] = p['control'].lower()
        if p['control'] not in PRODUCTS:
            fail('control must be one of %s, not %s' % (', '.join(sorted(PRODUCTS)), p['control']))
    if not p['variant'].strip():
        fail('variant must not be empty')
    if '"' in p['file']:
        fail('file must not hold double quotes; the program removes them: %s' % p['file'])

    program = p['program']
    if os.sep not in program:
        found = module.get_bin_path(program)
        if not found:
            fail('rigcfg program "%s" not found in PATH' % program)
        program = found
    if not os.path.isfile(program):
        fail('rigcfg program %s not found' % program)
    if not os.access(program, os.X_OK):
        fail('rigcfg program %s is not executable' % program)

    root = os.path.normpath(p['korv_root'])
    if not os.path.isdir(root):
        fail('KORV_ROOT %s is no folder' % root)
    log_dir = p['log_dir'] or native_path(root, COMMON_DATA + '\\Korv\\log')

    try:
        machine = read_machine_file(root, p['file'])
        if machine['mode'] not in ('copy', 'create'):
            fail('machine file %s has [configure] mode=%s: only copy and create run '
                 'without a dialog' % (p['file'], machine['mode'] or '(none)'))
        if machine['mode'] != p['mode']:
            fail('machine file %s is a %s file, the task asks for %s'
                 % (p['file'], machine['mode'], p['mode']))
        if p['variant'] not in machine['variants']:
            fail('variant %s is not in machine file %s (its variants: %s)'
                 % (p['variant'], p['file'], ', '.join(machine['variants']) or 'none'))
        if p['mode'] == 'copy' and not copy_target(machine, p['variant']):
            fail('machine file %s stores no target for variant %s' % (p['file'], p['variant']))
        if p['mode'] == 'create':
            folder = expand(machine['variantfolder'] + '\\' + p['variant'], root)
            if not os.path.isdir(native_path(root, folder)):
                fail('variant %s of machine file %s has no folder %s'
                     % (p['variant'], p['file'], folder))
        product = product_of(program, p['control'])
        paths = written_files(root, machine, p, product)
    except RigcfgError as e:
        fail(to_native(e))
    result['product'] = product

    args = []
    for key in ('control', 'file', 'variant', 'proxy', 'alias_machine_name', 'alias_variant'):
        if p[key]:
            args.append('%s=%s' % (key, p[key]))
    result['cmd'] = [program] + args

    before = {path: read_bytes(path) for path in paths}
    scratch = None
    try:
        if module.check_mode:
            # The station stays untouched: the run goes to a scratch copy of
            # the whole installation, logs included in a folder of their own.
            scratch = tempfile.mkdtemp(prefix='rigcfg-check-')
            run_root = os.path.join(scratch, 'root')
            run_log = os.path.join(scratch, 'log')
            scratch_copy(root, run_root, {os.path.normpath(log_dir)}, set(paths))
            inside = [os.path.join(run_root, os.path.relpath(path, root))
                      if not os.path.relpath(path, root).startswith('..') else None
                      for path in paths]
            if None in inside:
                fail('check mode cannot follow a file outside KORV_ROOT: %s'
                     % paths[inside.index(None)])
        else:
            run_root, run_log, inside = root, log_dir, paths
        try:
            run = run_program(program, args, run_root, run_log, p['timeout'])
        except RigcfgError as e:
            fail(to_native(e))
        after = {path: read_bytes(where) for path, where in zip(paths, inside)}
    finally:
        if scratch:
            shutil.rmtree(scratch, ignore_errors=True)

    diffs = []
    for path in paths:
        old, new = before[path], after[path]
        differs = old != new
        result['files'].append(dict(
            path=path, changed=differs,
            before=hashlib.sha256(old).hexdigest() if old is not None else None,
            after=hashlib.sha256(new).hexdigest() if new is not None else None))
        if differs:
            result['changed_files'].append(path)
            diffs.append(dict(before_header=path if old is not None else '(absent)',
                              after_header=path, before=text_of(old), after=text_of(new)))
    result['changed'] = bool(result['changed_files'])
    if module._diff:
        result['diff'] = diffs

    rc = run['rc']
    code = rc - 256 if rc > 127 else rc
    result.update(rc=rc, exit_code=code, stdout=run['stdout'], stderr=run['stderr'],
                  error_log=run['error_log'])
    if rc < 0:
        result['meaning'] = 'killed by signal %d' % -rc
        fail('rigcfg was killed by signal %d' % -rc)
    result['meaning'] = MEANINGS.get(code, 'an exit code the program does not give')
    if code == 0:
        module.exit_json(**result)
    reasons = [reason_of(line) for line in run['error_log']]
    detail = ('; error log: ' + ' | '.join(reasons[-3:])) if reasons else '; the error log says nothing'
    fail('rigcfg ended with %d (%s)%s' % (code, result['meaning'], detail))


if __name__ == '__main__':
    main()
