"""What the program says of the machine that it runs on: load, processes, ports, apps, what starts by itself, and why so much
is used. It only reads."""

import subprocess

from measuring import say


def run(programs, _options):
    say("machine")
    subprocess.run([programs.tool("explain_machine")], check=True)
