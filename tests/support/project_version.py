"""The version as CMakeLists.txt says it: "1.2.3a"."""

import os
import re

with open(os.path.join(os.path.dirname(__file__), "..", "..", "CMakeLists.txt"), encoding="utf-8") as file:
    text = file.read()
VERSION = (re.search(r"project\(Korvane VERSION ([\d.]+)", text)[1] +
           re.search(r"set\(KORVANE_VERSION \$\{PROJECT_VERSION\}(\w*)\)", text)[1])
