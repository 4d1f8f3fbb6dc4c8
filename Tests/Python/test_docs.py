"""Everything that the documentation shows is run."""

import doctest
import unittest

import kaanimation


def load_tests(loader, tests, pattern):
    tests.addTests(doctest.DocTestSuite(kaanimation, optionflags=doctest.ELLIPSIS | doctest.IGNORE_EXCEPTION_DETAIL))
    return tests


if __name__ == "__main__":
    unittest.main()
