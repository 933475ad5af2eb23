"""Lets pages join a server that speaks TCP alone, such as a scripted one: a WebSocket at /play, as the real server
offers it."""

import asyncio
import threading

import websockets

from ports import free_port


class Bridge:
    """Passes the bytes of WebSockets on `port` on to a TCP port of this machine, and back."""

    def __init__(self, target):
        self.target = target
        self.port = free_port()
        self.loop = asyncio.new_event_loop()
        self.loop.run_until_complete(self.listen())
        self.thread = threading.Thread(target=self.loop.run_forever, daemon=True)
        self.thread.start()

    def close(self):
        async def end():
            self.server.close()
            await self.server.wait_closed()
        asyncio.run_coroutine_threadsafe(end(), self.loop).result()
        self.loop.call_soon_threadsafe(self.loop.stop)
        self.thread.join()
        self.loop.close()

    async def listen(self):
        self.server = await websockets.serve(self.serve, "127.0.0.1", self.port, compression=None, max_size=None,
                                             ping_interval=None, close_timeout=1)

    async def serve(self, page, path):
        try:
            reader, writer = await asyncio.open_connection("127.0.0.1", self.target)
        except OSError:
            return
        upwards = asyncio.create_task(self.send_up(page, writer))
        try:
            while data := await reader.read(65536):
                await page.send(data)
        except (OSError, websockets.ConnectionClosed):
            pass
        finally:
            writer.close()
            await page.close()
            await upwards

    async def send_up(self, page, writer):
        try:
            async for data in page:
                writer.write(data)
                await writer.drain()
        except (OSError, websockets.ConnectionClosed):
            pass
        writer.close()
