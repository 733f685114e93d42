# What the tests of the extension room load.
orvo_test_plugin(OffersEverything Angebot.cpp)
