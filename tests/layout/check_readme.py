#!/usr/bin/env python3
"""Checks that the README shows a program as it stands in its source file. Usage: check_readme.py README SOURCE"""

import pathlib
import sys

readme, source = (pathlib.Path(argument).read_text() for argument in sys.argv[1:3])
if f"```cpp\n{source.strip()}\n```" not in readme:
    print(f"{sys.argv[1]} does not show {sys.argv[2]} as it is: copy the file between ```cpp and ```")
    sys.exit(1)
print("The README's program is the one that is compiled")
