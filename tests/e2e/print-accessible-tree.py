#!/usr/bin/python3
"""Prints what assistive technology finds on the accessibility bus: a line for each object, with
its role, its name and its text."""

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi


def print_tree(accessible):
    text = Atspi.Text.get_text(accessible, 0, -1) if "Text" in accessible.get_interfaces() else ""
    print(accessible.get_role_name(), accessible.get_name(), text, sep="|")
    for index in range(accessible.get_child_count()):
        print_tree(accessible.get_child_at_index(index))


print_tree(Atspi.get_desktop(0))
