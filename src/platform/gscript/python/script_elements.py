# The top-level statements of a text, each as (command name or "", first line, last line);
# a command is a call of a prefixed dotted name, alone or as an assignment's value.

def _script_elements(text, prefixes):
    import ast

    def dotted(node):
        parts = []
        while isinstance(node, ast.Attribute):
            parts.append(node.attr)
            node = node.value
        if not isinstance(node, ast.Name):
            return None
        parts.append(node.id)
        return ".".join(reversed(parts))

    elements = []
    for statement in ast.parse(text).body:
        value = getattr(statement, "value", None) if isinstance(statement, (ast.Expr, ast.Assign, ast.AnnAssign)) else None
        name = dotted(value.func) if isinstance(value, ast.Call) else None
        is_command = name is not None and any(name.startswith(prefix + ".") for prefix in prefixes)
        elements.append((name if is_command else "", statement.lineno - 1, statement.end_lineno - 1))
    return elements
