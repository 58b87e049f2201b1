// The headers that all tests share are compiled with this file; see CMakeLists.txt.
