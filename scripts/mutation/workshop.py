"""Builds a copy of the checkout, and judges mutants of it by its tests."""

import collections
import hashlib
import json
import math
import os
import pathlib
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import time

from mutation.sources import FOLDERS, ROOT, read_sources

TEST_FOLDERS = FOLDERS + ("property", "faults", "limits")

# A single test that takes this long is a slow one.
SLOW_MS = 200

# Of the random tests each runs this share, in percent.
CASE_SHARE = "2"

MEMORY_LIMIT = 4 << 30
FILE_LIMIT = 1 << 30

# A test may take this many times its usual time of the processor, and of the clock, and some
# seconds on top.
SLOWDOWN = 4
PROCESSOR_GRACE_S = 3
CLOCK_GRACE_S = 60


def processor_time():
    """The processor time of all programs that were run and waited for, in seconds."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


class Workshop:
    """A copy of the checkout, built once; mutants are compiled beside it."""

    def __init__(self, work, jobs):
        self.work = work.resolve()
        self.tree = self.work / "tree"
        self.build = self.work / "build"
        self.mutant = self.work / "mutant"
        self.overlay = self.mutant / "source"
        self.jobs = jobs
        self.pristine_code = {}
        self.standard = self.work / "precompiled" / "standard.h"

    # Copies what changed, so that only that is built anew.
    def copy_tree(self):
        listed = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "-co", "--exclude-standard"],
                                capture_output=True, check=False)
        if listed.returncode == 0:
            files = {name for name in listed.stdout.decode().split("\0") if name}
        else:
            files = {path.relative_to(ROOT).as_posix() for path in ROOT.rglob("*")
                     if path.is_file() and path.relative_to(ROOT).parts[0] not in ("build", ".git")}
        files = {name for name in files if (ROOT / name).is_file()}
        for name in files:
            target = self.tree / name
            content = (ROOT / name).read_bytes()
            if not target.is_file() or target.read_bytes() != content:
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(ROOT / name, target)
        for path in list(self.tree.rglob("*")):
            if path.is_file() and path.relative_to(self.tree).as_posix() not in files:
                path.unlink()

    def build_tree(self):
        linker = "-fuse-ld=lld" if shutil.which("ld.lld") else ""
        launcher = shutil.which("ccache") or ""
        environment = dict(os.environ, CCACHE_BASEDIR=str(self.tree), CCACHE_NOHASHDIR="1")
        self.run_or_stop(
            ["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=None",
             "-DCMAKE_CXX_FLAGS=-O1 -w", f"-DCMAKE_EXE_LINKER_FLAGS={linker}",
             f"-DCMAKE_CXX_COMPILER_LAUNCHER={launcher}", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
             "-DBUILD_SHARED_LIBS=OFF", "-DORVO_BUILD_TOOLS=OFF"], environment)
        self.tests = self.find_tests()
        self.run_or_stop(["ninja", "-C", self.build, f"-j{self.jobs}", *self.all_tests()],
                         environment)
        self.read_build()

    def run_or_stop(self, command, environment):
        done = subprocess.run([str(part) for part in command], env=environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        if done.returncode != 0:
            sys.exit(f"{done.stdout}\nmutate.py: FAILED: {shlex.join(map(str, command))}")

    def find_tests(self):
        """The test programs of each folder of tests that this build has, as targets."""
        known = set(re.findall(r"^(\w+): phony", self.ninja("-t", "targets", "all"), re.MULTILINE))
        tests = {}
        for folder in TEST_FOLDERS:
            path = self.tree / "tests" / folder / "CMakeLists.txt"
            if path.is_file():
                named = re.findall(r"^\s*orvo_add_test\(\s*(\w+)", path.read_text(), re.MULTILINE)
                tests[folder] = [test for test in named if test in known]
        return tests

    def all_tests(self):
        return [test for tests in self.tests.values() for test in tests]

    def program(self, folder, test):
        return self.build / "tests" / folder / test

    def ninja(self, *arguments):
        return subprocess.run(["ninja", "-C", self.build, *arguments], capture_output=True,
                              text=True, check=True).stdout

    def read_build(self):
        """How each object is compiled, what it is made of, and how each test is linked."""
        self.compile = {}
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            command = shlex.split(entry["command"])
            if "ccache" in os.path.basename(command[0]):
                command = command[1:]
            self.compile[command[command.index("-o") + 1]] = command
        self.precompile()
        self.users = collections.defaultdict(list)
        target = None
        for line in self.ninja("-t", "deps").splitlines():
            if line[:1].strip():
                target = line.split(": #deps")[0]
            elif line.strip():
                path = (self.build / line.strip()).resolve()
                if path.is_relative_to(self.tree):
                    self.users[path.relative_to(self.tree).as_posix()].append(target)
        self.link = {}
        for test in self.all_tests():
            command = self.ninja("-t", "commands", test).strip().splitlines()[-1]
            # Between ": && " and " && :".
            self.link[test] = shlex.split(command.split(" && ")[1])

    # The standard headers are most of what the compiler reads, and they declare no more than names.
    def precompile(self):
        names = set()
        for text in read_sources(self.tree).values():
            names |= set(re.findall(r"^#include <([a-z0-9_]+)>", text, re.MULTILINE))
        folder = self.standard.with_suffix(".h.gch")
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        self.standard.write_text("".join(f"#include <{name}>\n" for name in sorted(names)))
        kinds = set()
        for target, command in self.compile.items():
            if target.split("/")[0] in FOLDERS:
                kinds.add(tuple(command[:command.index("-o")]))
        for number, command in enumerate(sorted(kinds)):
            self.run_or_stop([*command, "-x", "c++-header", self.standard,
                              "-o", folder / f"{number}.gch"], os.environ)

    def affected(self, file):
        """The library's objects that a source goes into, and those of the tests."""
        users = [target for target in self.users[file] if target in self.compile]
        library = [target for target in users if target.split("/")[0] in FOLDERS]
        return library, [target for target in users if target.startswith("tests/")]

    def compiled(self, target, kind, level=None):
        """Compiles one object beside the build, with the sources laid over the tree; null where
        that fails."""
        output = self.mutant / kind / target
        output.parent.mkdir(parents=True, exist_ok=True)
        command = list(self.compile[target])
        source = pathlib.Path(command[command.index("-c") + 1])
        over = self.overlay / source.relative_to(self.tree)
        if over.is_file():
            command[command.index("-c") + 1] = str(over)
        if "-MF" in command:
            command[command.index("-MF") + 1] = str(output) + ".d"
        command[command.index("-o") + 1] = str(output)
        command.insert(1, f"-I{self.overlay}")
        if target.split("/")[0] in FOLDERS and level is None:
            command[1:1] = ["-include", str(self.standard)]
        if level:
            command.append(level)
        done = subprocess.run(command, cwd=self.build, capture_output=True, check=False)
        return output if done.returncode == 0 else None

    def lay_over(self, file, text):
        shutil.rmtree(self.overlay, ignore_errors=True)
        path = self.overlay / file
        path.parent.mkdir(parents=True)
        path.write_text(text, encoding="utf-8")

    def code(self, target, kind, level):
        """The hash of an object's content, null where it does not compile."""
        path = self.compiled(target, kind, level)
        return path and hashlib.sha256(path.read_bytes()).hexdigest()

    def same_code(self, file, text, mutated, level):
        """Whether a mutant compiles to the same machine code at some level of optimization."""
        for target in self.affected(file)[0]:
            key = target, file, level
            if key not in self.pristine_code:
                self.lay_over(file, text)
                self.pristine_code[key] = self.code(target, "pristine", level)
            self.lay_over(file, mutated)
            if self.code(target, "optimized", level) != self.pristine_code[key]:
                return False
        return True

    def run_test(self, test, program, processor_s, clock_s, chosen="*", is_brief=True):
        """Runs one test program; returns the outcome and, for a failure, what failed."""
        scratch = self.work / "scratch"
        shutil.rmtree(scratch, ignore_errors=True)
        scratch.mkdir()
        environment = dict(os.environ, TMPDIR=str(scratch), ORVO_TEST_CASES=CASE_SHARE,
                           GTEST_FAIL_FAST="1", GTEST_BRIEF=str(int(is_brief)), GTEST_COLOR="no",
                           GTEST_FILTER=chosen)

        def limit():
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
            resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_LIMIT, FILE_LIMIT))
            resource.setrlimit(resource.RLIMIT_CPU, (processor_s, processor_s + 1))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))

        log = self.work / "test.log"
        with open(log, "wb") as output:
            process = subprocess.Popen([str(program)], cwd=scratch, env=environment, stdout=output,
                                       stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL,
                                       preexec_fn=limit, start_new_session=True)
            try:
                status = process.wait(clock_s)
            except subprocess.TimeoutExpired:
                status = None
            finally:
                try:
                    os.killpg(process.pid, signal.SIGKILL)
                except ProcessLookupError:
                    pass
                process.wait()
        if status == 0:
            return "passed", None
        failed = re.search(rb"^\[  FAILED  \] (\S+)", log.read_bytes(), re.MULTILINE)
        name = f"status {status}"
        if failed:
            name = failed.group(1).decode("utf-8", "replace").rstrip(",")
        is_late = status in (None, -signal.SIGXCPU)
        return "timeout" if is_late else "killed", f"{test}: {name}"

    def measure_tests(self):
        """Runs every test program as it is: all must pass; how long each takes sets its limits."""
        self.limits, self.choices, log = {}, {}, self.work / "test.log"
        for folder, tests in self.tests.items():
            for test in tests:
                clock, processor = time.monotonic(), processor_time()
                outcome, what = self.run_test(test, self.program(folder, test), 3600, 3600,
                                              is_brief=False)
                if outcome != "passed":
                    sys.exit(f"{log.read_text(errors='replace')}\n"
                             f"mutate.py: FAILED without any mutant: {what}")
                # Most mutants fall to a quick test: the others come last.
                slow = ":".join(name for name, ms in re.findall(
                    r"^\[       OK \] (\S+) \((\d+) ms\)", log.read_text(), re.MULTILINE)
                    if int(ms) >= SLOW_MS)
                self.choices[test] = [f"-{slow}", slow] if slow else ["*"]
                self.limits[test] = (
                    math.ceil(PROCESSOR_GRACE_S + SLOWDOWN * (processor_time() - processor)),
                    CLOCK_GRACE_S + SLOWDOWN * (time.monotonic() - clock))

    def linked(self, test, objects):
        """Links a test with the mutant's objects in front of the archive that holds the others."""
        output = self.mutant / test
        command, replaced = [], {str(target): str(path) for target, path in objects.items()}
        for part in self.link[test]:
            if part.endswith(".a") and not part.startswith("/"):
                command += [path for target, path in replaced.items()
                            if not target.startswith("tests/")]
            command.append(replaced.get(part, part))
        command[command.index("-o") + 1] = str(output)
        done = subprocess.run(command, cwd=self.build, capture_output=True, check=False)
        return output if done.returncode == 0 else None

    def judge(self, mutant, text):
        """Tests one mutant; returns the outcome and the test that decided it."""
        shutil.rmtree(self.mutant, ignore_errors=True)
        mutated = mutant.apply(text)
        self.lay_over(mutant.file, mutated)
        library, of_tests = self.affected(mutant.file)
        objects = {}
        for target in library:
            objects[target] = self.compiled(target, "objects")
            if objects[target] is None:
                return "invalid", None
        # Most equivalents show already here. What tests include may matter to them alone.
        if not of_tests and all(path.read_bytes() == (self.build / target).read_bytes()
                                for target, path in objects.items()):
            return "equivalent", None
        own = mutant.file.split("/")[0]
        for folder in sorted(self.tests, key=lambda name: name != own):
            for test in self.tests[folder]:
                for target in of_tests:
                    if target not in objects and target in self.link[test]:
                        objects[target] = self.compiled(target, "objects")
                        if objects[target] is None:
                            return "invalid", None
                program = self.linked(test, objects)
                if program is None:
                    return "invalid", None
                for chosen in self.choices[test]:
                    outcome, what = self.run_test(test, program, *self.limits[test], chosen)
                    if outcome != "passed":
                        return outcome, what
        if self.same_code(mutant.file, text, mutated, "-O2"):
            return "equivalent", None
        return "survived", None
