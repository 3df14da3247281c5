# Modules that Python's own finders do not find are looked for among the import handler
# sources. The finder comes last in sys.meta_path, so a script never hides a module of the
# standard library. Module "a.b" is the name "a/b.py"; "a" is a package when a name begins
# with "a/". Names that are no identifiers ("my tools/x.py") are reached with importlib.

import sys as _sys


class _SourceFinder:
    @classmethod
    def find_spec(cls, fullname, path=None, target=None):
        import importlib.util
        stem = fullname.replace(".", "/")
        names = _import_names()
        if stem + ".py" in names:
            return importlib.util.spec_from_loader(fullname, cls, origin=stem + ".py")
        prefix = stem + "/"
        if any(name.startswith(prefix) for name in names):
            package = importlib.util.spec_from_loader(fullname, cls, origin=stem, is_package=True)
            package.submodule_search_locations = []
            return package
        return None

    @staticmethod
    def create_module(module_spec):
        return None

    @staticmethod
    def exec_module(module):
        origin = module.__spec__.origin
        if origin.endswith(".py"):
            module.__file__ = origin
            exec(compile(_import_source(origin), origin, "exec"), module.__dict__)


if not any(finder is _SourceFinder for finder in _sys.meta_path):
    _sys.meta_path.append(_SourceFinder)
