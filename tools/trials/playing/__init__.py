# SPDX-License-Identifier: MIT
"""Trials of what zorvane-server plays."""
