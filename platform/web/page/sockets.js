// The program's sockets: each is a WebSocket to the host's /play, or to its /watch for a spectator. Its binary messages
// are a plain stream of bytes.
const sockets = new Map();
const isWatching = location.pathname.endsWith('/watch');
const readLimit = 64 << 20;  // unread bytes; beyond it the connection fails
const readAhead = 256 << 10;  // bytes of one event, so that the page stays responsive
const writeLimit = 4 << 20;  // unsent bytes, as in platform/winsock.h

function openSocket(id, host, port) {
  closeSocket(id);
  const scheme = location.protocol === 'https:' ? 'wss' : 'ws';
  const address = host.includes(':') && !host.startsWith('[') ? `[${host}]` : host;
  let wire;
  try {
    wire = new WebSocket(`${scheme}://${address}:${port}${isWatching ? '/watch' : '/play'}`);
  } catch {
    post('socketFailed', id);
    return;
  }
  wire.binaryType = 'arraybuffer';
  const socket = {wire, isOpen: false, waiting: []};
  sockets.set(id, socket);
  const isCurrent = () => sockets.get(id) === socket;
  wire.onopen = () => {
    if (!isCurrent()) return;
    socket.isOpen = true;
    post('socketOpened', id);
  };
  wire.onmessage = (event) => {
    if (!isCurrent() || !(event.data instanceof ArrayBuffer)) return;
    takeBytes(id, new Uint8Array(event.data));
  };
  wire.onclose = () => {
    if (!isCurrent()) return;
    sockets.delete(id);
    post(socket.isOpen ? 'socketClosed' : 'socketFailed', id);
  };
}

// All bytes that have arrived since the program looked become one event, up to a limit.
function takeBytes(id, bytes) {
  const size = (event) => event.length || event.bytes.length;
  const unread = pendingEvents.reduce((sum, event) => event.id === id ? sum + size(event) : sum, 0);
  if (unread + bytes.length > readLimit) {
    closeSocket(id);
    return post('socketFailed', id);
  }
  const last = pendingEvents.findLast((event) => event.id === id);
  if (!last || last.kind !== 'socketData' || size(last) + bytes.length > readAhead) {
    return post('socketData', id, [], bytes);
  }
  last.parts = last.parts || [last.bytes];
  last.parts.push(bytes);
  last.length = (last.length || last.bytes.length) + bytes.length;
}

// Closes the connection and drops its pending events.
function closeSocket(id) {
  const socket = sockets.get(id);
  sockets.delete(id);
  for (let at = pendingEvents.length - 1; at >= 0; --at) {
    const event = pendingEvents[at];
    if (event.id === id && event.kind.startsWith('socket')) pendingEvents.splice(at, 1);
  }
  if (socket) socket.wire.close();
}

function sendBytes(id, bytes) {
  const socket = sockets.get(id);
  if (!socket || socket.wire.readyState !== WebSocket.OPEN) return;
  if (socket.wire.bufferedAmount + bytes.length > writeLimit) {
    closeSocket(id);
    post('socketFailed', id);
    return;
  }
  socket.wire.send(bytes);
}

// Leaving the page leaves the game, even if the browser keeps the page for its back button.
function leaveArena() {
  for (const {wire} of sockets.values()) wire.close();
}
addEventListener('pagehide', leaveArena);
