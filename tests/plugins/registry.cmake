# Plugins for the tests of the registry room.
orvo_test_plugin(EndsTheProcess BeendetProzess.cpp)
