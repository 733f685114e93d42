# Plugins for the tests of the extension room.
orvo_test_plugin(OffersEverything Angebot.cpp)
