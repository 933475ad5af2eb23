# Boost::headers. They fit any system, but the other headers beside them are this machine's. A build for Windows finds
# Boost's alone, through a link.
if(WIN32)
  if(NOT TARGET Boost::headers)
    find_path(KELVORA_BOOST boost/version.hpp PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers)
    file(CREATE_LINK ${KELVORA_BOOST}/boost ${CMAKE_BINARY_DIR}/headers/boost SYMBOLIC)
    add_library(Boost::headers INTERFACE IMPORTED GLOBAL)
    target_include_directories(Boost::headers SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/headers)
    target_link_libraries(Boost::headers INTERFACE ws2_32 mswsock)
  endif()
else()
  find_package(Boost 1.74 REQUIRED)
endif()
