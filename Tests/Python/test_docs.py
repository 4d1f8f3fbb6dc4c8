"""Everything that the documentation shows is run."""

import doctest
import inspect
import unittest

import kaanimation


class Documented(unittest.TestCase):
    def test_every_public_name_says_what_it_is(self):
        for name in kaanimation.__all__:
            thing = getattr(kaanimation, name)
            if not (inspect.isclass(thing) or callable(thing)):
                continue
            self.assertTrue(thing.__doc__, name)
            for member, value in vars(thing).items() if inspect.isclass(thing) else ():
                if not member.startswith("_") and (callable(value) or isinstance(value, property)):
                    self.assertTrue(value.__doc__, f"{name}.{member}")

    def test_examples_are_found_in_what_is_compiled(self):
        found = {test.name for test in doctest.DocTestFinder().find(kaanimation) if test.examples}
        self.assertLessEqual({f"kaanimation.{name}" for name in
                              ("Project", "Scene", "Curve", "Player", "Host", "Report", "Samples")}, found)


def load_tests(loader, tests, pattern):
    tests.addTests(doctest.DocTestSuite(kaanimation, optionflags=doctest.ELLIPSIS | doctest.IGNORE_EXCEPTION_DETAIL))
    return tests


if __name__ == "__main__":
    unittest.main()
