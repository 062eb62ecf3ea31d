"""All bytes from the receiver's device are counted exactly, and the end of the device does not end the program."""

import os
import pty
import tty

import run


class DeviceOutput(run.NavigatorTest):
    def start_on(self, device, *arguments):
        return self.start("--scenario", self.scenario(), *arguments, program="NAVIGATOR_ON_TEST_DEVICE",
                          environment={"NAVIGATOR_TEST_DEVICE": device})

    def start_on_terminal(self, *arguments):
        self.master, slave = pty.openpty()
        tty.setraw(slave)
        self.device = os.path.join(self.folder, "receiver")  # a terminal's own name is soon another one's
        os.symlink(os.ttyname(slave), self.device)
        navigator = self.start_on(self.device, *arguments)
        navigator.wait_for("^Navigation$")  # it has the terminal open
        os.close(slave)
        return navigator

    def send(self, text):
        os.write(self.master, text.encode("latin-1"))

    def test_counts_epochs_checksum_errors_and_garbage(self):
        navigator = self.start_on_terminal()
        self.send("half a sentence*00\r\n")
        self.send(run.epoch("235958.00") + "$GNRMC,235959.00,wrong*00\r\n")
        navigator.wait_for(run.epoch_line("23:59:58"))
        text = run.epoch("235959.00")
        self.send(text[:100])  # sentences are cut anywhere
        self.send(text[100:] + "\xff\xfe\x00\r\n" + "x" * 5000 + "\r\n" + "\r\n")
        navigator.wait_for(run.epoch_line("23:59:59"))
        self.send(run.epoch("000000.00"))
        navigator.wait_for(run.epoch_line("00:00:00"))
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 0)
        os.close(self.master)
        for line in ("Epochs               3, 3 of them with a 3D fix; 3 shown", "Sentences            27",
                     "Checksum errors      1", "Other bad lines      3"):
            self.assertIn(f"  {line}\n", navigator.out, navigator.story())

    def test_a_device_that_goes_away_ends_the_run_in_order(self):
        navigator = self.start_on_terminal("--timeout", "5")
        self.send(run.epoch("120000.00"))
        navigator.wait_for(run.epoch_line("12:00:00"))
        os.unlink(self.device)
        os.close(self.master)
        self.assert_ends(navigator, 3)
        self.assertIn(f"the receiver's device '{self.device}' is gone: ", navigator.err)
        self.assertIn("Epochs               1, 1 of them", navigator.out)
        self.assert_closed(navigator)

    def test_a_device_that_comes_late_is_read(self):
        device = os.path.join(self.folder, "receiver")
        navigator = self.start_on(device)
        navigator.wait_for(rf"cannot open the receiver's device '{device}': .*; opening the modem again$", "err")
        self.master, slave = pty.openpty()
        tty.setraw(slave)
        os.symlink(os.ttyname(slave), device)
        self.send(run.epoch("120000.00"))
        navigator.wait_for(run.epoch_line("12:00:00"))
        self.assertEqual(navigator.err.count("opening the modem again"), 1, navigator.story())
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 0)
        os.close(slave)
        os.close(self.master)

    def test_an_interrupt_ends_the_search_for_a_device(self):
        navigator = self.start_on(os.path.join(self.folder, "nowhere"))
        navigator.wait_for("opening the modem again", "err")
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 0)
        self.assert_closed(navigator)

    def test_silence_is_reported_once_and_ends_nothing(self):
        navigator = self.start_on_terminal()
        self.send(run.epoch("120000.00"))
        navigator.wait_for("no sentence has come for 5 s", "err")
        self.send(run.epoch("120010.00"))
        navigator.wait_for(run.epoch_line("12:00:10"))
        navigator.send(run.SIGINT)
        self.assert_ends(navigator, 0)
        os.close(self.master)
        self.assertEqual(navigator.err.count("no sentence has come"), 1, navigator.story())

    def test_a_device_that_cannot_be_opened_is_named(self):
        for device, reason in (("/nowhere/receiver", "No such file or directory"), (self.folder, "is gone")):
            with self.subTest(device):
                navigator = self.start_on(device, "--timeout", "5")
                self.assert_ends(navigator, 3)
                self.assertIn(f"the receiver's device '{device}'", navigator.err)
                self.assertIn(reason, navigator.err)
                self.assert_closed(navigator)


if __name__ == "__main__":
    run.main()
