# kelvora_record_surfaces(TARGET): lets the program record its drawing calls (bench/surfaceRecorder.h). The linker
# inserts the recorder between the painters and the surface.
function(kelvora_record_surfaces target)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/surfaceRecorder.cpp)
  target_link_options(${target} PRIVATE
    -Wl,--wrap=_ZN7kelvora7Surface3ClsEv
    -Wl,--wrap=_ZN7kelvora7Surface4LineEffff
    -Wl,--wrap=_ZN7kelvora7Surface6CircleEfffNS_6ColourE
    -Wl,--wrap=_ZN7kelvora7Surface12PaintPictureERKNS_7PictureEffffffNS_15RasterOperationE
    -Wl,--wrap=_ZN7kelvora7Surface11PaintSpriteERKNS_10SpriteCopyES3_ffff
    -Wl,--wrap=_ZN7kelvora7Surface5PrintESt17basic_string_viewIcSt11char_traitsIcEE)
endfunction()
