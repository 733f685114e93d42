# Plugins for the tests of the command-line tool.
orvo_test_plugin(DoesHarm Untat.cpp)
target_link_libraries(DoesHarm PRIVATE pthread)
orvo_test_plugin(DescribedByFileForGood Beschrieben.cpp) # never unmapped, so that its inode always is the same library
target_link_options(DescribedByFileForGood PRIVATE LINKER:-z,nodelete)
