#pragma once

#include <cstddef>
#include <cstdint>

/// The page's side of the client, in JavaScript (page/library.js). Texts are bytes of code page 1252 with their size,
/// names and files are plain ASCII with an end byte, lengths and places are pixels.
extern "C" {

void page_create(int id, int parent, const char* kind);
void page_createMenu(int id, int parent, int isSeparator);
void page_remove(int id);
void page_setNumber(int id, const char* property, double value);
void page_setText(int id, const char* property, const char* text, std::size_t size);
void page_focus(int id);
/// Shows a part of a picture in RGBA: left, top, width and height. The page has copied it when this returns.
void page_showPixels(int id, const std::uint32_t* pixels, int width, int height, int partLeft, int partTop,
                     int partWidth, int partHeight);
void page_showBox(int id, const char* text, std::size_t size);
void page_showEnd(const char* title, const char* text, std::size_t size);

/// Gives the browser its turn, until there is an event or the time is over (infinite for never).
void page_wait(double milliseconds);
/// The kind of the first event, 0 if there is none; `numbers` gets seven: target, size of its bytes, five of its own.
int page_nextEvent(std::int32_t* numbers);
/// Takes that event away and copies its bytes.
void page_takeEvent(char* bytes);

void page_openSocket(int id, const char* host, std::size_t size, int port);
void page_closeSocket(int id);
void page_send(int id, const char* bytes, std::size_t size);

/// Copies at most `size` bytes and returns how many; -1 for a setting that is not there.
int page_readSetting(const char* section, const char* key, char* room, std::size_t size);
void page_writeSetting(const char* section, const char* key, const char* text, std::size_t size);
/// A part of the page's address: "hostname", "port", "host" or "arguments".
int page_place(const char* part, char* room, std::size_t size);
double page_secondsSinceMidnight();

/// `numbers` gets left, top, width, height and advance, `room` the coverage if it has the size for it.
void page_glyph(const char* font, int character, std::int32_t* numbers, std::uint8_t* room, std::size_t size);
int page_lineHeight(const char* font);

void page_openSound(int id, const char* file);
void page_silenceSound(int id, int isSilent);
void page_playSound(int id);
void page_stopSound(int id);
void page_playMusic(const char* file);
void page_stopMusic();
int page_musicState();
}
