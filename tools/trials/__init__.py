# SPDX-License-Identifier: MIT
"""What the trials and the benchmarks of zorvane-server are made of."""
