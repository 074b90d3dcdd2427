# SPDX-License-Identifier: MIT
kse_test(schema/DeletePolicy kse_core)
kse_test(schema/ModuleCatalog kse_core)
kse_test(schema/SettingsSchema kse_core)
