/* A program that knows nothing of the library and claims interface 0 of a device.
   foreigner NODE SECONDS */
#include <fcntl.h>
#include <linux/usbdevice_fs.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

int main(int count, char** words) {
    unsigned interface = 0;
    if (count != 3) return 2;
    const int node = open(words[1], O_RDWR);
    if (ioctl(node, USBDEVFS_CLAIMINTERFACE, &interface) != 0) {
        perror(words[1]);
        return 1;
    }
    sleep((unsigned)atoi(words[2]));
    /* Whether it has been the holder to the end. */
    return ioctl(node, USBDEVFS_RELEASEINTERFACE, &interface) != 0;
}
