# SPDX-License-Identifier: MIT

kse_test(promo/Ads kse_ui)
set_tests_properties(promo/Ads PROPERTIES COST 1) # it waits long, so it starts early
