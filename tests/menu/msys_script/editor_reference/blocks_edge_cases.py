def empty_body():
pass_at_same_level = 1

def with_trailing_comments():
    a = 1
    b = 2
    # a comment after the body

	# a tab-indented comment
x = 3

for i in range(3):	# header with tab before comment
	y = i
        z = i

if text == "#:":
    pass
while False:  # no colon after this comment
    pass
result = zut.script.sys.execute_python_code(code="pass")
never_closed = zut.script.sys.delay_script(
    time=1,
