# What the tests of the registry room load.
orvo_test_plugin(EndsTheProcess BeendetProzess.cpp)
