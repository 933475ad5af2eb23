# The page for browsers: the program, and what it loads. It is published in build/web/site, where the server finds it.
set(stage ${CMAKE_BINARY_DIR}/stage)
set(page ${CMAKE_SOURCE_DIR}/platform/web/page)
add_executable(kelvora webMain.cpp)
set_target_properties(kelvora PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${stage})
target_link_libraries(kelvora PRIVATE kelvora_client kelvora_web)
target_link_options(kelvora PRIVATE
  -sENVIRONMENT=web -sALLOW_MEMORY_GROWTH=1 -sINITIAL_MEMORY=32MB
  # DoEvents gives the browser its turn and comes back. Drawing never does, and stays as fast as it is.
  -sASYNCIFY=1 -sASYNCIFY_STACK_SIZE=1048576 "-sASYNCIFY_IMPORTS=['page_wait']"
  "-sASYNCIFY_REMOVE=['kelvora::Surface::*']"
  "-sEXPORTED_RUNTIME_METHODS=['callMain']"
  "SHELL:--js-library ${page}/library.js")
set(parts text.js events.js touch.js input.js sockets.js glyphs.js settings.js sound.js windows.js menus.js grid.js controls.js start.js)
foreach(part ${parts})
  target_link_options(kelvora PRIVATE "SHELL:--extern-pre-js ${page}/${part}")
endforeach()
file(GLOB pictures CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/assets/*.png)
list(FILTER pictures EXCLUDE REGEX "/icon-")
foreach(picture ${pictures})
  get_filename_component(name ${picture} NAME)
  target_link_options(kelvora PRIVATE "SHELL:--preload-file ${picture}@/kelvora/assets/${name}")
endforeach()
target_link_options(kelvora PRIVATE "SHELL:--preload-file ${CMAKE_SOURCE_DIR}/kelvora.jpg@/kelvora/kelvora.jpg")
list(TRANSFORM parts PREPEND ${page}/)
set_target_properties(kelvora PROPERTIES LINK_DEPENDS "${parts};${page}/library.js;${pictures}")

# What the browser fetches beside it.
set(comic /usr/share/fonts/opentype/comic-neue)
set(liberation /usr/share/fonts/truetype/liberation)
set(fonts ${comic}/ComicNeue-Regular.otf ${comic}/ComicNeue-Bold.otf ${liberation}/LiberationSans-Regular.ttf
  ${liberation}/LiberationSans-Bold.ttf)
file(GLOB sounds CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/sounds/*.wav ${CMAKE_SOURCE_DIR}/sounds/*.mp3)
set(loose ${page}/index.html ${page}/begin.js ${page}/style.css)
set(publish ${CMAKE_SOURCE_DIR}/tools/publish_site.sh)
set(stamp ${CMAKE_CURRENT_BINARY_DIR}/site.stamp)
add_custom_command(OUTPUT ${stamp}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${stage}/fonts ${stage}/sounds
  COMMAND ${CMAKE_COMMAND} -E copy ${loose} ${stage}
  COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_SOURCE_DIR}/assets/icon-128.png ${stage}/icon.png
  COMMAND ${CMAKE_COMMAND} -E copy ${fonts} ${stage}/fonts
  COMMAND ${CMAKE_COMMAND} -E copy /usr/share/doc/fonts-comic-neue/copyright ${stage}/fonts/ComicNeue.txt
  COMMAND ${CMAKE_COMMAND} -E copy /usr/share/doc/fonts-liberation/copyright ${stage}/fonts/LiberationSans.txt
  COMMAND ${CMAKE_COMMAND} -E copy ${sounds} ${stage}/sounds
  COMMAND ${publish} ${stage} ${CMAKE_BINARY_DIR}/site
  COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
  DEPENDS kelvora ${loose} ${fonts} ${sounds} ${publish})
add_custom_target(kelvora_site ALL DEPENDS ${stamp})
