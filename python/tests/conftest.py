# SPDX-License-Identifier: MIT
"""Settings for all tests."""

import signal

# Background jobs of scripts ignore Ctrl-C, and their child processes inherit this.
signal.signal(signal.SIGINT, signal.default_int_handler)
