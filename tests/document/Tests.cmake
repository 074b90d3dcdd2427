# SPDX-License-Identifier: MIT

kse_test(document/Document kse_core)
