#pragma once

#include <cstddef>
#include <cstdint>

/// The page's side of the client, in JavaScript (page/library.js). Texts are bytes of code page 1252 with their size.
/// Names and files are plain ASCII with an end byte. Lengths and places are in pixels.
extern "C" {

/// Creates the element of a control, such as "Label", or of a menu item, at the end of its parent's.
void page_create(int id, int parent, const char* kind);
void page_createMenu(int id, int parent, int isSeparator);
/// Removes an element and all in it.
void page_remove(int id);
/// Sets a property of an element. Which ones there are depends on its kind: see page/controls.js.
void page_setNumber(int id, const char* property, double value);
void page_setText(int id, const char* property, const char* text, std::size_t size);
/// Moves the focus to an element.
void page_focus(int id);
/// Shows a picture in RGBA. The page has copied it when this returns.
void page_showPicture(int id, const std::uint32_t* pixels, int width, int height);
/// Shows a part of a picture in RGBA before the display's next frame: left, top, width and height. The page reads the
/// pixels later, while the program waits: until the next call for this element, or until it is removed.
void page_showPixels(int id, const std::uint32_t* pixels, int width, int height, int partLeft, int partTop,
                     int partWidth, int partHeight);
/// Opens a message box, which sends `Closed`.
void page_showBox(int id, const char* text, std::size_t size);
/// Shows that the program has ended, and why.
void page_showEnd(const char* title, const char* text, std::size_t size);

/// Yields to the browser until an event arrives or the time is over (infinite for never).
void page_wait(double milliseconds);
/// The kind of the oldest event, 0 if there is none. `numbers` gets seven: target, size of its bytes, first, shift, x,
/// y, inside.
int page_nextEvent(std::int32_t* numbers);
/// Removes that event and copies its bytes.
void page_takeEvent(char* bytes);

/// Connects a socket, which sends `SocketOpened` or `SocketFailed`.
void page_openSocket(int id, const char* host, std::size_t size, int port);
/// Closes a socket, if it is open, and drops its pending events.
void page_closeSocket(int id);
/// Queues bytes for sending. With more than 4 MiB unsent, the socket sends `SocketFailed`. Ignored unless it is open.
void page_send(int id, const char* bytes, std::size_t size);

/// Copies at most `size` bytes of a setting, and returns its length; -1 if there is none.
int page_readSetting(const char* section, const char* key, char* buffer, std::size_t size);
/// Saves a setting, for this visit only if the browser keeps none.
void page_writeSetting(const char* section, const char* key, const char* text, std::size_t size);
/// A part of the page's address: "hostname", "port", "host" or "arguments". Copies and returns as above.
int page_place(const char* part, char* buffer, std::size_t size);
/// In local time.
double page_secondsSinceMidnight();

/// Draws a character. `numbers` gets left, top, width, height and advance, `buffer` the coverage if it is large enough.
void page_glyph(const char* font, int character, std::int32_t* numbers, std::uint8_t* buffer, std::size_t size);
int page_lineHeight(const char* font);

/// Loads an effect. Its id is the game's.
void page_openSound(int id, const char* file);
void page_silenceSound(int id, int isSilent);
/// Plays an effect from its beginning, once it is loaded.
void page_playSound(int id);
void page_stopSound(int id);
/// Stops an effect, and forgets it.
void page_closeSound(int id);
/// Plays a track once. Browsers wait for the first click or key.
void page_playMusic(const char* file);
void page_stopMusic();
/// The music's state, as in PlayState.
int page_musicState();

/// 1 if the visitor wants this game recorded.
int page_wantsRecording();
/// Begins the recording. Its file begins with these bytes.
void page_beginRecording(const char* head, std::size_t size);
/// Adds contents, which the page compresses. 0 if the recording has become too large.
int page_record(const char* contents, std::size_t size);
}
