// The functions that the program calls (platform/web/page.h).
mergeInto(LibraryManager.library, {
  page_create: function(id, parent, kind) { return createControl(id, parent, UTF8ToString(kind)); },
  page_createMenu: function(id, parent, isSeparator) { return createMenu(id, parent, isSeparator !== 0); },
  page_remove: function(id) { return removeControl(id); },
  page_setNumber: function(id, name, value) { return setProperty(id, UTF8ToString(name), value); },
  page_setText: function(id, name, bytes, size) { return setProperty(id, UTF8ToString(name), toText(HEAPU8.subarray(bytes, bytes + size))); },
  page_focus: function(id) { return focusControl(id); },
  page_showPicture: function(id, pixels, width, height) { return showPicture(id, pixels, width, height); },
  page_showPixels: function(id, pixels, width, height, left, top, partWidth, partHeight) {
    return showPixels(id, pixels, width, height, left, top, partWidth, partHeight);
  },
  page_showBox: function(id, bytes, size) { return showBox(id, toText(HEAPU8.subarray(bytes, bytes + size))); },
  page_showEnd: function(title, bytes, size) {
    showEnd(UTF8ToString(title), toText(HEAPU8.subarray(bytes, bytes + size)));
    endGame();
  },

  page_wait: function(milliseconds) { return Asyncify.handleSleep((wakeUp) => waitForEvents(milliseconds, wakeUp)); },
  page_nextEvent: function(numbers) {
    const event = pendingEvents[0];
    if (!event) return 0;
    typeMoved(event);
    if (event.parts) {
      event.bytes = new Uint8Array(event.length);
      let at = 0;
      for (const part of event.parts) {
        event.bytes.set(part, at);
        at += part.length;
      }
      event.parts = null;
    }
    HEAP32[numbers >> 2] = event.id;
    HEAP32[(numbers >> 2) + 1] = event.bytes.length;
    for (let i = 0; i < 5; ++i) HEAP32[(numbers >> 2) + 2 + i] = event.numbers[i] || 0;
    return kindNumbers[event.kind];
  },
  page_takeEvent: function(bytes) { return HEAPU8.set(pendingEvents.shift().bytes, bytes); },

  page_openSocket: function(id, host, size, port) { return openSocket(id, toText(HEAPU8.subarray(host, host + size)), port); },
  page_closeSocket: function(id) { return closeSocket(id); },
  page_send: function(id, bytes, size) { return sendBytes(id, HEAPU8.slice(bytes, bytes + size)); },

  page_readSetting: function(section, key, buffer, size) {
    const text = readSetting(UTF8ToString(section), UTF8ToString(key));
    return text === null ? -1 : copyText(text, buffer, size);
  },
  page_writeSetting: function(section, key, bytes, size) {
    writeSetting(UTF8ToString(section), UTF8ToString(key), toText(HEAPU8.subarray(bytes, bytes + size)));
  },
  page_place: function(part, buffer, size) {
    const port = location.port || (location.protocol === 'https:' ? '443' : '80');
    const parts = {hostname: location.hostname, port, host: `${location.hostname}:${port}`,
      arguments: decodedLink(location.search.slice(1)).replaceAll('&', ' ')};
    return copyText(parts[UTF8ToString(part)], buffer, size);
  },
  page_secondsSinceMidnight: function() {
    const now = new Date();
    return now.getHours() * 3600 + now.getMinutes() * 60 + now.getSeconds() + now.getMilliseconds() / 1000;
  },

  page_glyph: function(font, character, numbers, buffer, size) {
    const glyph = drawGlyph(UTF8ToString(font), character);
    HEAP32.set([glyph.left, glyph.top, glyph.width, glyph.height, glyph.advance], numbers >> 2);
    if (glyph.coverage.length <= size) HEAPU8.set(glyph.coverage, buffer);
  },
  page_lineHeight: function(font) { return fontLineHeight(UTF8ToString(font)); },

  page_openSound: function(id, file) { return openSound(id, UTF8ToString(file)); },
  page_silenceSound: function(id, isSilent) { return silenceSound(id, isSilent !== 0); },
  page_playSound: function(id) { return playSound(id); },
  page_stopSound: function(id) { return stopSound(id); },
  page_closeSound: function(id) { return closeSound(id); },
  page_playMusic: function(file) { return playMusic(UTF8ToString(file)); },
  page_stopMusic: function() { return stopMusic(); },
  page_musicState: function() { return musicState; },

  page_wantsRecording: function() { return wantsRecording() ? 1 : 0; },
  page_beginRecording: function(bytes, size) { return beginRecording(HEAPU8.slice(bytes, bytes + size)); },
  page_record: function(bytes, size) { return record(HEAPU8.slice(bytes, bytes + size)) ? 1 : 0; },
});
