"""The console's half in Python: compiles what was typed, runs it, and prints what it gave or raised."""

import ast
import codeop
import linecache
import os
import re
import rlcompleter
import sys
import traceback


class Writer:
    """What stands for standard output and error."""

    encoding = "utf-8"
    errors = "replace"

    def __init__(self, write, is_error):
        self._write = write
        self._is_error = is_error

    def write(self, text):
        if not isinstance(text, str):
            raise TypeError(f"write() argument must be str, not {type(text).__name__}")
        self._write(text, self._is_error)
        return len(text)

    def writelines(self, lines):
        for line in lines:
            self.write(line)

    def flush(self):
        pass

    def isatty(self):
        return False

    def writable(self):
        return True


class Console:
    def __init__(self, studio, write, kaanimation):
        sys.stdout, sys.stderr = Writer(write, False), Writer(write, True)
        sys.stdin = None
        self._compile = codeop.CommandCompiler()
        self._common = {"kaanimation": kaanimation, "studio": studio, "project": None}
        self._names = {"__name__": "__console__", "__builtins__": __builtins__, **self._common}
        self._count = 0

    def take_project(self, project):
        self._common["project"] = self._names["project"] = project

    def is_complete(self, source):
        """Whether nothing more is expected; a block that is typed line by line ends with an empty line."""
        try:
            if self._compile(source, "<command>", "exec") is None:
                return False
        except (SyntaxError, ValueError, OverflowError):
            return True
        last = source.rsplit("\n", 1)
        return len(last) == 1 or not last[1].strip() or not last[1][0].isspace()

    def run(self, source):
        self._count += 1
        name = f"<command {self._count}>"
        linecache.cache[name] = (len(source), None, source.splitlines(True), name)
        linecache.cache.pop(f"<command {self._count - 500}>", None)
        return self._guarded(lambda: self._execute(source, name))

    def _execute(self, source, name):
        tree = ast.parse(source, name)
        shown = [tree.body.pop()] if tree.body and isinstance(tree.body[-1], ast.Expr) else []
        exec(compile(tree, name, "exec"), self._names)
        exec(compile(ast.Interactive(shown), name, "single"), self._names)

    def run_file(self, path):
        return self._guarded(lambda: self._execute_file(path))

    def _execute_file(self, path):
        with open(path, "rb") as file:
            code = compile(file.read(), path, "exec")
        arguments, places = sys.argv, list(sys.path)
        sys.argv, sys.path[:0] = [path], [os.path.dirname(os.path.abspath(path))]
        linecache.checkcache(path)
        try:
            exec(code, {"__name__": "__main__", "__file__": path, "__builtins__": __builtins__, **self._common})
        finally:
            sys.argv, sys.path[:] = arguments, places

    @staticmethod
    def _guarded(work):
        try:
            work()
            return True
        except SystemExit as ending:
            if ending.code not in (None, 0):
                print(f"SystemExit: {ending.code}", file=sys.stderr)
            return ending.code in (None, 0)
        except BaseException as error:
            trace = error.__traceback__
            while trace is not None and trace.tb_frame.f_code.co_filename == __file__:
                trace = trace.tb_next  # what is the console's own
            traceback.print_exception(type(error), error, trace)
            return False

    def completions(self, line):
        word = re.search(r"[\w.]*$", line).group()
        if not word:
            return []
        completer, found = rlcompleter.Completer(self._names), []
        while len(found) < 200:
            try:
                match = completer.complete(word, len(found))
            except Exception:  # a property that raises
                break
            if match is None:
                break
            found.append(match.rstrip("()"))
        return sorted(set(found))
