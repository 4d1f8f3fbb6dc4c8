"""The stubs: checked by mypy, and complete."""

import ast
import pathlib
import subprocess
import sys
import tempfile
import unittest

import kaanimation
from kaanimation import _core

PACKAGE = pathlib.Path(kaanimation.__file__).parent


class Types(unittest.TestCase):
    def test_mypy_finds_nothing_wrong(self):
        with tempfile.TemporaryDirectory() as folder:
            script = pathlib.Path(folder, "script.py")
            script.write_text("import kaanimation\n"
                              "with kaanimation.open('walk.bvh') as project:\n"
                              "    values = project.clips[0].sample(range(10)).values\n"
                              "    reveal_type(values)\n")
            ran = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--cache-dir", folder, str(PACKAGE),
                                  str(script)], capture_output=True, text=True, cwd=folder)
        lines = [line for line in ran.stdout.splitlines() if ": note:" not in line]
        self.assertEqual(lines[-1:] and lines[-1].startswith("Success"), True, ran.stdout + ran.stderr)
        self.assertIn("float", ran.stdout, "what sampling gives has a type")

    def test_the_stub_names_all_there_is_and_nothing_else(self):
        stub = ast.parse((PACKAGE / "_core.pyi").read_text())
        named = {}
        for entry in stub.body:
            if isinstance(entry, ast.ClassDef):
                members = set()
                for member in entry.body:
                    if isinstance(member, ast.FunctionDef):
                        members.add(member.name)
                    elif isinstance(member, ast.AnnAssign):
                        members.add(member.target.id)
                named[entry.name] = members
            elif isinstance(entry, ast.FunctionDef):
                named[entry.name] = None
        public = {name for name in vars(_core) if not name.startswith("__")}
        self.assertEqual(public - {"KEY_DTYPE"}, set(named))
        for name, members in named.items():
            if members is None:
                continue
            there = {member for member in vars(getattr(_core, name)) if not member.startswith("_")}
            self.assertEqual(there, {member for member in members if not member.startswith("_")}, name)
            for member in members:
                self.assertTrue(hasattr(getattr(_core, name), member), f"{name}.{member}")


if __name__ == "__main__":
    unittest.main()
