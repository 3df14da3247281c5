# A comment at the top: "quotes" and 'quotes' inside stay comment
text = 'single # not a comment'
other = "double with \" escaped quote"
docs = """A triple-quoted string
that spans # several lines
and ends here""" + 'tail'
raw = '''a backslash does not protect \'''
after = 1
unterminated = 'runs on
to this line' and self
if value == "a#b":
    print(value)  # colon after comment:
numbers = 12 + 3.5 * 0x1F
