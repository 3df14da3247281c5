class _Handle:
    """An object of the application; its attributes are listed in its help."""

    __slots__ = ("_core",)

    def __getattr__(self, name):
        if name.startswith("__"):
            raise AttributeError(name)
        return _object_get(self._core, name)

    def __setattr__(self, name, value):
        _object_set(self._core, name, value)

    def __repr__(self):
        return _object_repr(self._core)

    def __eq__(self, other):
        if not isinstance(other, _Handle):
            return NotImplemented
        return _object_identity(self._core) == _object_identity(other._core)

    def __hash__(self):
        return hash(_object_identity(self._core))

    def __dir__(self):
        return _object_names(self._core)

    @property
    def __doc__(self):
        return _object_doc(self._core)


_handle_classes = {}


def _handle_class(type_name):
    import sys, types
    cls = _handle_classes.get(type_name)
    if cls is None:
        module_name, _, name = type_name.rpartition(".")
        module = sys.modules.get(module_name)
        if module is None:
            module = types.ModuleType(module_name)
            sys.modules[module_name] = module
            parent_name, _, child = module_name.rpartition(".")
            # While the package itself is being made it is not in sys.modules yet.
            parent = _package if parent_name == _package.__name__ else sys.modules.get(parent_name)
            if parent is not None:
                setattr(parent, child, module)
        # A class made by type() gets a __doc__ of None of its own, which would hide the handle's.
        cls = type(name, (_Handle,), {"__slots__": (), "__module__": module_name, "__qualname__": name,
                                      "__doc__": _Handle.__dict__["__doc__"]})
        setattr(module, name, cls)
        _handle_classes[type_name] = cls
    return cls


_declared = []


def __getattr__(name):
    # The classes of declared types (zut.dialog.DialogHandle) are made when first asked for:
    # a script that uses none pays nothing for them.
    import sys
    module_name = _package.__name__ + "." + name
    for type_name in [t for t in _declared if t.rpartition(".")[0] == module_name]:
        _handle_class(type_name)
    if module_name in sys.modules:
        return sys.modules[module_name]
    raise AttributeError(f"module {_package.__name__!r} has no attribute {name!r}")


def _wrap(core, type_name):
    handle = object.__new__(_handle_class(type_name))
    object.__setattr__(handle, "_core", core)
    return handle
