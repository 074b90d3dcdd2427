# SPDX-License-Identifier: MIT

kse_test(schema/Schema kse_core)
