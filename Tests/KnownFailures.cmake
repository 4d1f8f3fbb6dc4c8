# Whole areas that do not agree with the module yet; -DKA_TRIAL_TESTS=ON builds and runs them all the same.
set(KA_TRIAL_AREAS)
