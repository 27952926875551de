// Prints a page on every printer.
using System;

static class Program
{
    const int Width = 1800, Height = 1200; // 6 x 4 inch at 300 dots per inch

    static void Print(Zprusb.Session session, byte printer)
    {
        session.Select(printer);
        session.ChooseMedia(0xF1, 15240, 10160);
        using (var page = session.StartPage())
        {
            var row = new byte[Width * 3];
            for (int y = 0; y < Height; ++y)
            {
                for (int x = 0; x < Width; ++x) row[3 * x] = (byte)(255 * y / Height);
                page.Write(row);
            }
        }
    }

    static int Main()
    {
        try
        {
            using (var session = new Zprusb.Session())
            {
                foreach (var printer in session.Printers())
                {
                    Print(session, printer);
                    Console.WriteLine("printer " + printer + " has the page");
                }
            }
            return 0;
        }
        catch (Zprusb.PrinterException error)
        {
            Console.Error.WriteLine(error.Message);
            return 1;
        }
    }
}
