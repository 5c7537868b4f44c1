"""Scripts of the tree as modules, for tests of their routines."""
import importlib.machinery
import importlib.util
import os
import sys

SCRIPTS = os.path.join(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))), "scripts")


def loaded(name):
    """scripts/<name> as a module; it leaves no compiled file behind."""
    sys.dont_write_bytecode = True
    loader = importlib.machinery.SourceFileLoader(name, os.path.join(SCRIPTS, name))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(name, loader))
    sys.modules[name] = module
    loader.exec_module(module)
    return module
