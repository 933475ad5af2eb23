"""A player over a third-party WebSocket library: Debian's python3-websockets."""

import asyncio

import websockets

from realServer import PATIENCE, RawPlayer


class WebSocket:
    """The library's client with blocking calls."""

    def __init__(self, uri, host=1, **options):
        self.loop = asyncio.new_event_loop()
        self.connection = self.run(self.open(uri, local_addr=(f"127.0.0.{host}", 0), open_timeout=None,
                                             ping_interval=None, max_size=None, **options))

    @staticmethod
    async def open(uri, **options):
        return await websockets.connect(uri, **options)

    def run(self, awaitable):
        return self.loop.run_until_complete(asyncio.wait_for(awaitable, PATIENCE))

    def sendall(self, data):
        self.run(self.connection.send(data))

    def receive(self):
        data = self.run(self.connection.recv())
        assert isinstance(data, bytes), "the server sends nothing but bytes"
        return data

    def ping(self):
        self.run(self.run(self.connection.ping()))

    def close(self):
        self.run(self.connection.close())
        self.loop.close()


class WebSocketPlayer(RawPlayer):
    """A RawPlayer over a WebSocket."""

    def receive(self):
        return self.connection.receive()
