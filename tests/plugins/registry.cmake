# What the tests of the registry room load.
