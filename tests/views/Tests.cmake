# SPDX-License-Identifier: MIT

kse_test(views/cleanup/Cleanup kse_ui)
kse_test(views/compare/CompareView kse_ui)
kse_test(views/health/Health kse_ui)
kse_test(views/model/SettingsModel kse_ui)
kse_test(views/preferences/PreferencesView kse_ui)
kse_test(views/rows/SettingRow kse_ui)
kse_test(views/search/SearchView kse_ui)
