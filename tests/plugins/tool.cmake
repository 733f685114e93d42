# What the tests of the command-line tool load.
orvo_test_plugin(DoesHarm Untat.cpp)
target_link_libraries(DoesHarm PRIVATE pthread)
orvo_test_plugin(DescribedByFileForGood Beschrieben.cpp) # and never unmapped, so that its inode is one library for good
target_link_options(DescribedByFileForGood PRIVATE LINKER:-z,nodelete)
