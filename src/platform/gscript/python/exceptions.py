class CommandError(Exception):
    """A command failed: its error code, the code's message and the command's log."""

    def __init__(self, code, message, log):
        super().__init__(code, message, log)
        self.code = code
        self.message = message
        self.log = log

    def __str__(self):
        text = self.code + ": " + self.message if self.message else self.code
        return text + "\n" + self.log if self.log else text


class ScriptTypeError(Exception):
    """An object refused an attribute assignment."""


def _command_signature(arguments):
    from inspect import Parameter, Signature
    return Signature([Parameter(name, Parameter.KEYWORD_ONLY, **({} if required else {"default": None}))
                      for name, required in arguments])
