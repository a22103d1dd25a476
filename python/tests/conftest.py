# SPDX-License-Identifier: MIT
"""What all tests need."""

import signal

# What scripts start in their background ignores Ctrl-C, and so would all that tests start.
signal.signal(signal.SIGINT, signal.default_int_handler)
