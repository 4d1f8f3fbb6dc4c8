# Tests that fail today, by test program, left out of the run until what they found is mended: each is a disagreement
# between module and test that is still to be decided. Remove an entry with the change that mends it.
set(KA_KNOWN_FAILURES_ka-test-documents
  NumberText.SingleFloatsAreWhatSetNumGives
  Preflight.BracketsBelowTheRootDoNotCount
  Saving.ChangesNothing
  RoundTrip.TheDocumentAndThePublicReadersMakeTheSameOfDamagedDocuments)
set(KA_KNOWN_FAILURES_ka-test-life
  Shapes/ImportPlaybackOfScene.FrameByFrame/*)
set(KA_KNOWN_FAILURES_ka-test-scenegraph
  Hostile.ANullByteIsAFaultOutsideOfStringsAndAByteInside
  RoundTrip.KeepsEveryFloatBitForBit
  Texts/Refusal.SaysWhereAndLeavesNothingBehind/*)

# Whole areas that do not agree with the module yet; -DKA_TRIAL_TESTS=ON builds and runs them all the same.
set(KA_TRIAL_AREAS Model Gallery)
