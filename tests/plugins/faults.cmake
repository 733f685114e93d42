# What the tests of the fault catalogue load.
