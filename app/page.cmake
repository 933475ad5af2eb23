# The page for browsers: the program, and what it loads. It is published in build/web/site, where the server finds it.
set(stage ${CMAKE_BINARY_DIR}/stage)
set(page ${CMAKE_SOURCE_DIR}/platform/web/page)
add_executable(kelvora webMain.cpp)
set_target_properties(kelvora PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${stage})
target_link_libraries(kelvora PRIVATE kelvora_record_game kelvora_web)
target_link_options(kelvora PRIVATE
  -sENVIRONMENT=web -sALLOW_MEMORY_GROWTH=1 -sINITIAL_MEMORY=32MB
  "-sEXPORTED_RUNTIME_METHODS=['callMain']"
  "SHELL:--js-library ${page}/library.js")
set(parts text.js events.js touch.js input.js sockets.js glyphs.js settings.js sound.js windows.js menus.js recording.js grid.js pictures.js controls.js start.js)
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

# Files that the browser fetches beside it.
set(comic /usr/share/fonts/opentype/comic-neue)
set(liberation /usr/share/fonts/truetype/liberation)
set(fonts ${comic}/ComicNeue-Regular.otf ${comic}/ComicNeue-Bold.otf ${liberation}/LiberationSans-Regular.ttf
  ${liberation}/LiberationSans-Bold.ttf)
file(GLOB music CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/sounds/*.mp3)
file(GLOB effects CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/sounds/*.wav)
set(loose ${page}/index.html ${page}/begin.js ${page}/style.css)
set(publish ${CMAKE_SOURCE_DIR}/tools/publish_site.sh)
# The same samples in a third of the bytes.
find_program(FLAC flac REQUIRED)
set(pack_effects ${FLAC} --silent --force --best --no-padding --no-seektable --output-prefix=${stage}/sounds/ ${effects})
set(stamp ${CMAKE_CURRENT_BINARY_DIR}/site.stamp)
add_custom_command(OUTPUT ${stamp}
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${stage}/fonts ${stage}/sounds
  COMMAND ${CMAKE_COMMAND} -E make_directory ${stage}/fonts ${stage}/sounds
  COMMAND ${CMAKE_COMMAND} -E copy ${loose} ${stage}
  COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_SOURCE_DIR}/assets/icon-128.png ${stage}/icon.png
  COMMAND ${CMAKE_COMMAND} -E copy ${fonts} ${stage}/fonts
  COMMAND ${CMAKE_COMMAND} -E copy /usr/share/doc/fonts-comic-neue/copyright ${stage}/fonts/ComicNeue.txt
  COMMAND ${CMAKE_COMMAND} -E copy /usr/share/doc/fonts-liberation/copyright ${stage}/fonts/LiberationSans.txt
  COMMAND ${CMAKE_COMMAND} -E copy ${music} ${stage}/sounds
  COMMAND ${pack_effects}
  COMMAND ${publish} ${stage} ${CMAKE_BINARY_DIR}/site
  COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
  DEPENDS kelvora ${loose} ${fonts} ${music} ${effects} ${publish})
add_custom_target(kelvora_site ALL DEPENDS ${stamp})
