# What the tests of the extension room load.
